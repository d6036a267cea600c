#include "app/session/layer_names.h"

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

static QString scratch(const std::string& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

TEST(LayerNames, RoleAndRootFollowFromTheWords)
{
    struct Case
    {
        const char* name;
        LayerRole role;
        const char* root;
    };
    using R = LayerRole;
    const Case cases[] = {
        {"M42_starless.xisf", R::Starless, "m42"},
        {"M42Starless.tif", R::Starless, "m42"},
        {"m42starless.tif", R::Starless, "m42"},
        {"starless_M42.tif", R::Starless, "m42"},
        {"M42-no-stars v2.tif", R::Starless, "m42 v2"},
        {"m42_nostars.png", R::Starless, "m42"},
        {"NGC7000 SL.png", R::Starless, "ngc7000"},
        {"slow_m42.png", R::Whole, "slow m42"},
        {"M42_stars.xisf", R::Stars, "m42"},
        {"M42StarsOnly.tif", R::Stars, "m42"},
        {"m42_star_mask.tif", R::Stars, "m42"},
        {"STARS.TIF", R::Stars, ""},
        {"m42_with_stars.tif", R::Whole, "m42"},
        {"starship.tif", R::Whole, "starship"},
        {"m42.tif", R::Whole, "m42"},
        {"", R::Whole, ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(layerRoleOf(c.name), c.role) << c.name;
        EXPECT_EQ(layerRootOf(c.name), c.root) << c.name;
    }
}

TEST(LayerNames, APairHasTwoRolesAndOneRoot)
{
    const std::optional<LayerPair> pair = layerPairOf("/a/M42 starless.png", "/b/m42-stars.tif");
    ASSERT_TRUE(pair);
    EXPECT_EQ(pair->starless, "/a/M42 starless.png");
    EXPECT_EQ(pair->stars, "/b/m42-stars.tif");
    EXPECT_EQ(layerPairOf("/b/m42-stars.tif", "/a/M42 starless.png")->starless, pair->starless);
    EXPECT_FALSE(layerPairOf("m42_starless.png", "m31_stars.png"));
    EXPECT_FALSE(layerPairOf("m42_starless.png", "m42.png"));
    EXPECT_FALSE(layerPairOf("m42_stars.png", "m42_stars.tif"));
}

TEST(LayerNames, ThePartnerLiesInTheSameFolderAndIsTheOnlyOne)
{
    for (const char* name : {"orion_starless.png", "orion_stars.png", "orion.png",
                             "orion_stars.txt", "lyra_starless.png"})
        zrtest::writeBytes(zrtest::scratchFolder() / name, {0});
    EXPECT_EQ(layerPartnerOf(scratch("orion_starless.png")), scratch("orion_stars.png"));
    EXPECT_EQ(layerPartnerOf(scratch("orion_stars.png")), scratch("orion_starless.png"));
    EXPECT_EQ(layerPartnerOf(scratch("orion.png")), "");
    EXPECT_EQ(layerPartnerOf(scratch("lyra_starless.png")), "");
    zrtest::writeBytes(zrtest::scratchFolder() / "orion_starmask.png", {0});
    EXPECT_EQ(layerPartnerOf(scratch("orion_starless.png")), "");
}

TEST(LayerNames, ThePictureOfAPairKeepsItsNameAsItWasWritten)
{
    const char* const cases[][2]{
        {"/a/M42_starless.xisf", "M42"},
        {"M42_v2.1-Starless.tif", "M42_v2.1"},
        {"starless NGC 7000.png", "NGC 7000"},
        {"caveNoStars.fits", "cave"},
        {"M31_starless_v2.png", "M31_starless_v2"},
        {"M31.png", "M31"},
        {"starless.png", "starless"},
    };
    for (const auto& [path, base] : cases)
        EXPECT_EQ(layerBaseOf(path), base);
}
