#include "app/mainwindow/run_aside.h"

#include <exception>
#include <memory>

#include <QEventLoop>
#include <QThread>

void runAside(const std::function<void()>& work)
{
    std::exception_ptr failure;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    thread->wait();
    if (failure)
        std::rethrow_exception(failure);
}
