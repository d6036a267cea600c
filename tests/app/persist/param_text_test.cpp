#include "app/persist/param_text.h"

#include <cmath>
#include <random>

#include <QMap>

#include "app/persist/param_table.h"
#include "engine/params/param_ranges.h"
#include "tests/support/testkit.h"

using zre::ZRParams;

void PrintTo(const QString& text, std::ostream* out)
{
    *out << text.toStdString();
}

namespace {

struct Document
{
    ZRParams params;
    int outputMode = 2;
    QList<QString> unknown;

    QString text(const QMap<QString, QString>& roles = {}) const
    {
        return zrproj::paramsToText(params, outputMode, roles, unknown);
    }
    Document& read(const QString& text)
    {
        zrproj::paramsFromText(text, params, outputMode, unknown);
        return *this;
    }
};

/// Fills every stored field with a value of its own that nine digits hold.
struct RandomFill
{
    Document& document;
    std::mt19937& random;

    void operator()(float ZRParams::*field) const
    {
        std::uniform_int_distribution<int> exponent(-12, 12);
        document.params.*field =
            std::ldexp(static_cast<float>(random()) - 2147483648.0f, exponent(random));
    }
    void operator()(int ZRParams::*field) const
    {
        document.params.*field = static_cast<int>(random());
    }
    void operator()(bool ZRParams::*field) const { document.params.*field = random() % 2 == 0; }
    void operator()(std::string ZRParams::*field) const
    {
        document.params.*field = "1,0.5;=" + std::to_string(random());
    }
    void operator()(zrproj::OutputView) const { document.outputMode = static_cast<int>(random()); }
    template <typename Other>
    void operator()(Other) const
    {
    }
};

/// Counts the fields that agree bit for bit.
struct SameField
{
    const Document& a;
    const Document& b;

    template <typename T>
    bool operator()(T ZRParams::*field) const
    {
        return a.params.*field == b.params.*field;
    }
    bool operator()(zrproj::OutputView) const { return a.outputMode == b.outputMode; }
    template <typename Other>
    bool operator()(Other) const
    {
        return true;
    }
};

QStringList keysOf(const QString& text)
{
    QStringList keys;
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts))
        keys << line.section('=', 0, 0);
    return keys;
}

} // namespace

TEST(ParamText, EveryFieldComesBackBitForBit)
{
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        Document written;
        zrproj::forEachKey([&](const zrproj::ParamKey& row) {
            std::visit(RandomFill{written, random}, row.field);
        });
        written.params.starErasures = {{1.5, -2.25, 10.0, 0.0, 2}, {1e-3, 1e6, 0.125, 3.5, 0}};
        const QString text = written.text();
        Document back;
        back.read(text);
        zrproj::forEachKey([&](const zrproj::ParamKey& row) {
            EXPECT_TRUE(std::visit(SameField{written, back}, row.field)) << row.name;
        });
        EXPECT_EQ(back.params.starErasures, written.params.starErasures);
        EXPECT_TRUE(back.unknown.isEmpty());
        EXPECT_EQ(back.text(), text);
    }
}

TEST(ParamText, AKeyAndItsRangeMeanTheSameField)
{
    for (const zre::ParamRange& row : zre::kParamRanges) {
        Document document;
        document.read(QString("%1=7").arg(row.name));
        EXPECT_EQ(row.get(document.params), 7.0) << row.name;
        EXPECT_NE(row.def, 7.0);
    }
}

TEST(ParamText, NoTwoKeysShareAField)
{
    const QString defaults = Document{}.text();
    for (const zrproj::ParamKey& row : zrproj::kParamOrder) {
        Document document;
        const QString line = QString("%1=%2").arg(
            row.name, defaults.contains(QString("\n%1=0\n").arg(row.name)) ? "1" : "0");
        document.read(line);
        const QString text = document.text();
        int changed = 0;
        for (const QString& other : text.split('\n'))
            changed += ('\n' + defaults).contains('\n' + other + '\n') || other.isEmpty() ? 0 : 1;
        EXPECT_EQ(changed, std::holds_alternative<zrproj::RoleId>(row.field) ? 0 : 1) << row.name;
    }
}

TEST(ParamText, AbsentKeysKeepWhatTheCallerHad)
{
    Document document;
    document.params.postHue = 33.0f;
    document.params.starErasures = {{1, 2, 3, 4, 1}};
    document.outputMode = 1;
    document.unknown << "left=over";
    document.read("smoothness=4\n");
    EXPECT_EQ(document.params.smoothness, 4.0f);
    EXPECT_EQ(document.params.postHue, 33.0f);
    EXPECT_EQ(document.params.starErasures.size(), 1u);
    EXPECT_EQ(document.outputMode, 1);
    EXPECT_TRUE(document.unknown.isEmpty());
}

TEST(ParamText, ForeignLinesStandSortedBehindTheTableAndRetiredOnesInTheirPlace)
{
    Document document;
    document.read("zebra=1\r\nobjectId=5\r\n someForeignKey = a=b \r\nstarErasures=1,2,3,4,1\r\n"
                  "starlessOnly=x\nno equals\n=7\n\n");
    EXPECT_EQ(document.unknown,
              QList<QString>({"zebra=1", "objectId=5", "someForeignKey = a=b", "starlessOnly=x"}));
    const QString text = document.text();
    EXPECT_TRUE(text.contains("\nobjectId=5\n"));
    EXPECT_TRUE(text.contains("\nsomeForeignKey = a=b\n"));
    QStringList expected;
    for (const zrproj::ParamKey& row : zrproj::kParamOrder)
        if (QString(row.name) != "starFillCatalog")
            expected << row.name;
    expected << "someForeignKey "
             << "starErasures"
             << "zebra";
    EXPECT_EQ(keysOf(text), expected);
    EXPECT_EQ(Document{}.read(text).text(), text);
}

TEST(ParamText, AForeignLineCannotReplaceAKnownKey)
{
    Document document;
    document.unknown << "smoothness=9"
                     << "noEquals"
                     << "starErasures=1,2,3,4,1";
    const QString text = document.text();
    EXPECT_EQ(text.count("smoothness="), 1);
    EXPECT_TRUE(text.contains("\nsmoothness=2\n"));
    EXPECT_FALSE(text.contains("noEquals"));
    EXPECT_FALSE(text.contains("starErasures"));
}

TEST(ParamText, RolesAreWrittenAlwaysAndReadNever)
{
    const QString text = Document{}.text({{"starmask", "m-1"}, {"depthmap", "d=2"}});
    EXPECT_TRUE(text.contains("\nstarMaskId=m-1\nstarlessId=\nstarsId=\n"));
    EXPECT_TRUE(text.contains("\ndepthMapId=d=2\n"));
    Document back;
    back.read(text);
    EXPECT_TRUE(back.unknown.isEmpty());
    EXPECT_TRUE(back.text().contains("\nstarMaskId=\n"));
}

TEST(ParamText, BadNumbersReadAsZeroAndNoRangeIsChecked)
{
    Document document;
    document.params.invertDepth = true;
    document.read("smoothness=2,5\nluminanceWeight=-7e3\nwiggleFps=3.5\noutputMode=99999999999\n"
                  "invertDepth=yes\nswapEyes=-3\nstarPlane=\nconvergence= 0.25");
    EXPECT_EQ(document.params.smoothness, 0.0f);
    EXPECT_EQ(document.params.luminanceWeight, -7000.0f);
    EXPECT_EQ(document.params.wiggleFps, 0);
    EXPECT_EQ(document.outputMode, 0);
    EXPECT_FALSE(document.params.invertDepth);
    EXPECT_TRUE(document.params.swapEyes);
    EXPECT_EQ(document.params.starPlane, 0.0f);
    EXPECT_EQ(document.params.convergence, 0.25f);
}

TEST(ParamText, DamagedErasuresAreDroppedAlone)
{
    Document document;
    document.params.starErasures = {{9, 9, 9, 9, 1}};
    document.read("starErasures=;1,2,3,4;5,6,7,8,7;1,1,0,1,1;1,1,-2,1,1;1,1,nan,1,1;"
                  "9.5,8,7,6,2,extra;;");
    EXPECT_EQ(document.params.starErasures,
              (std::vector<zre::StarErasure>{{5, 6, 7, 8, 0}, {9.5, 8, 7, 6, 2}}));
    document.read("starErasures=");
    EXPECT_TRUE(document.params.starErasures.empty());
}
