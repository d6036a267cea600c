#include "tools/render/program.h"

#include <clocale>
#include <csignal>
#include <exception>
#include <iostream>
#include <new>

#include <QGuiApplication>
#include <QImageReader>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "tools/render/command_line.h"
#include "tools/render/documentation.h"
#include "tools/render/interrupt_watch.h"

namespace zrrender {

static constexpr int kImageLimitMegabytes = 4096; // astrophotographs are large

/// The toolkit's warnings are for developers; what goes wrong here is told by the commands.
static void keepFailuresOnly(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::cerr << "zerrith-render: " << text.toStdString() << std::endl;
}

/// True when whoever read the standard output has closed it, as `head` does: nobody to complain to.
static bool readerIsGone()
{
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR);
}

/// A standard stream that the process was started without would lend its number to the next file
/// that is opened, and what is printed would go there. Opened the wrong way round it fails instead.
static void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

static Outcome runAlone(const Invocation& invocation, Console& console)
{
    if (invocation.has(Option::Help))
        console.answer(helpText(invocation.command));
    else if (invocation.has(Option::Version))
        console.answer(QStringLiteral("zerrith-render %1\n").arg(QLatin1String(programVersion())));
    else if (invocation.has(Option::Man))
        console.answer(manPage());
    else
        console.answer(bashCompletion());
    return Outcome::done();
}

static Outcome runInvocation(const Invocation& invocation, RunContext& context)
{
    context.console.setMode(invocation.has(Option::Json), invocation.has(Option::Quiet));
    if (!invocation.command || invocation.has(Option::Help) || invocation.has(Option::Version))
        return runAlone(invocation, context.console);
    try {
        return invocation.command->body(invocation, context);
    } catch (const std::bad_alloc&) {
        return Outcome::failed(QStringLiteral("not enough memory"));
    } catch (const std::exception& failure) {
        return Outcome::failed(QString::fromUtf8(failure.what()));
    }
}

int runCommandLine(const QStringList& arguments, Console& console, StagedOutputs& outputs)
{
    const auto parsed = parseCommandLine(arguments);
    Outcome outcome;
    if (const auto* mismatch = std::get_if<QString>(&parsed)) {
        console.setMode(arguments.contains(QLatin1String("--json")), false);
        outcome = Outcome::usage(*mismatch);
    } else {
        RunContext context{console, outputs};
        outcome = runInvocation(std::get<Invocation>(parsed), context);
    }
    if (!outcome.isDone()) {
        if (!outputs.abandon())
            return kInterrupted; // the failure is only that the outputs were taken away
        console.failed(outcome.code, outcome.message);
    }
    if (!console.flush() && outcome.isDone()) {
        if (!readerIsGone())
            console.failed(kFailed, QStringLiteral("cannot write to the standard output"));
        return kFailed;
    }
    return outcome.code;
}

int runProgram(int argc, char** argv)
{
    occupyStandardStreams();
    StagedOutputs outputs;
    const InterruptWatch watch([&] { outputs.abandon(); });
    std::signal(SIGPIPE,
                SIG_IGN); // a closed pipe is a failed write, not the end of the cleaning up

    // The toolkit gets no argument of ours: it would take some for its own.
    int one = argc > 0 ? 1 : 0;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(keepFailuresOnly);
    const QGuiApplication application(one, argv);
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setApplicationName(QStringLiteral("Zerrith Studio"));
    QCoreApplication::setOrganizationName(QStringLiteral("Corvelle Works"));
    QCoreApplication::setApplicationVersion(QLatin1String(programVersion()));
    QImageReader::setAllocationLimit(kImageLimitMegabytes);

    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const char* kind = std::getenv("TERM");
    const bool screen = isatty(STDERR_FILENO) && kind && std::string_view(kind) != "dumb";
    Console console(std::cout, std::cerr, screen);
    return runCommandLine(arguments, console, outputs);
}

} // namespace zrrender
