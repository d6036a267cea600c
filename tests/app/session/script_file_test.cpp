#include "app/session/script_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace flybyscript;

static void put(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

TEST(ScriptFile, ReadsTextsOfAllOriginsAndNothingElse)
{
    using namespace std::string_literals;
    const QString umlaut = QString::fromUtf8("# gr\u00f6\u00dfer\nhold 3\n");
    struct Case
    {
        std::string bytes;
        std::optional<QString> text;
    };
    const Case cases[] = {
        {"", ""},
        {"# gr\xc3\xb6\xc3\x9f"s + "er\nhold 3\n", umlaut},
        {"\xef\xbb\xbf# gr\xc3\xb6\xc3\x9f"s + "er\r\nhold 3\r\n", umlaut},
        {"# gr\xf6\xdf"s + "er\rhold 3\r", umlaut},
        {"\xff\xfeh\0o\0l\0d\0\r\0\n\0"s, "hold\n"},
        {"hold 1\n\xc3", QString::fromLatin1("hold 1\n\xc3")}, // cut off in a character
        {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s, std::nullopt},
        {"# " + std::string(30000, 'x'), std::nullopt},
        {std::string((16 << 20) + 1, '\n'), std::nullopt},
    };
    const QTemporaryDir folder;
    for (const Case& each : cases) {
        const QString path = folder.filePath("script");
        put(path, QByteArray::fromStdString(each.bytes));
        EXPECT_EQ(readScript(path), each.text) << each.bytes.substr(0, 40);
    }
    EXPECT_FALSE(readScript(folder.filePath("none")));
    EXPECT_FALSE(readScript(folder.path()));
    ASSERT_TRUE(writeScript(folder.filePath("written"), umlaut));
    EXPECT_EQ(readScript(folder.filePath("written")), umlaut);
    EXPECT_FALSE(writeScript(folder.filePath("no/such/folder"), umlaut));
}
