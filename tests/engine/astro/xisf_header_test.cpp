#include "engine/astro/xisf_header.h"

#include <gtest/gtest.h>

#include "engine/astro/projection.h"

using acl::parseXisfHeader;

namespace {

std::vector<std::uint8_t> noAttachment(std::uint64_t, std::uint64_t)
{
    throw acl::Error("no attachment");
}

std::string document(const std::string& image)
{
    return "<?xml version='1.0' encoding='utf8'?><!-- <Image --><xisf version=\"1.0\">"
           "<Metadata><Property id=\"AstrometricSolution:ProjectionSystem\" type=\"String\">no"
           "</Property></Metadata><Image geometry=\"1:1:1\">" +
           image + "</Image><Image><FITSKeyword name=\"SECOND\" value=\"1\"/></Image></xisf>";
}

const std::string kReference =
    "<Property id=\"PCL:AstrometricSolution:ReferenceCelestialCoordinates\" ";

/// 83.6 and -5.4 as little-endian doubles.
const std::vector<std::uint8_t> kBytes{0x66, 0x66, 0x66, 0x66, 0x66, 0xe6, 0x54, 0x40,
                                       0x9a, 0x99, 0x99, 0x99, 0x99, 0x99, 0x15, 0xc0};

} // namespace

TEST(XisfHeader, EveryStorageOfAVectorGivesTheSameNumbers)
{
    const std::string bigEndian = "4054e66666666666c01599999999999a";
    for (const std::string& rest :
         {std::string("type=\"F64Vector\" length=\"2\" location=\"inline:base64\">"
                      "ZmZmZmbm\n VECamZmZmZkVwA=="),
          std::string("type=\"Vector\" location=\"inline:hex\">"
                      "6666666666 e65440 \n 9A999999999915c0"),
          "type=\"F64Vector\" byteOrder=\"big\" location=\"inline:hex\">" + bigEndian,
          std::string("type=\"F64Vector\" location=\"embedded\"><Data encoding=\"base64\">"
                      "ZmZmZmbmVECamZmZmZkVwA==</Data>"),
          // zlib, stored and shuffled by items of 8
          std::string("type=\"F64Vector\" location=\"embedded\"><Data compression=\"zlib+sh:16:8\" "
                      "encoding=\"hex\">"
                      "7801011000efff 669a6699669966996699e699541540c0 441607e5</Data>"),
          std::string("type=\"F64Vector\" location=\"attachment:4096:16\">")}) {
        std::vector<std::pair<std::uint64_t, std::uint64_t>> asked;
        const auto header = parseXisfHeader(document(kReference + rest + "</Property>"),
                                            [&](std::uint64_t position, std::uint64_t size) {
                                                asked.emplace_back(position, size);
                                                return kBytes;
                                            });
        ASSERT_EQ(header.properties.size(), 1U) << rest;
        EXPECT_EQ(std::get<std::vector<double>>(header.properties[0].value),
                  (std::vector{83.6, -5.4}))
            << rest;
        for (const auto& block : asked)
            EXPECT_EQ(block, std::pair(std::uint64_t{4096}, std::uint64_t{16}));
    }
}

TEST(XisfHeader, IntegerAndSingleElementsBecomeDoubles)
{
    for (const auto& [type, hex] :
         {std::pair{"I8Vector", "fe03"}, std::pair{"I16Vector", "feff0300"},
          std::pair{"I32Vector", "feffffff03000000"}, std::pair{"F32Vector", "000000c000004040"},
          std::pair{"I64Matrix", "feffffffffffffff0300000000000000"}}) {
        const auto header =
            parseXisfHeader(document(kReference + "type=\"" + type + "\" location=\"inline:hex\">" +
                                     hex + "</Property>"),
                            noAttachment);
        EXPECT_EQ(std::get<std::vector<double>>(header.properties.at(0).value),
                  (std::vector{-2.0, 3.0}))
            << type;
    }
}

TEST(XisfHeader, StringsComeFromContentValueOrBlock)
{
    for (const char* rest : {">Gnomonic</Property>", " value=\"Gnomonic\"/>",
                             " location=\"inline:base64\">R25vbW9uaWM=</Property>"}) {
        const auto header = parseXisfHeader(
            document(std::string("<Property id=\"AstrometricSolution:ProjectionSystem\" "
                                 "type=\"String\"") +
                     rest),
            noAttachment);
        ASSERT_EQ(header.properties.size(), 1U) << rest;
        EXPECT_EQ(std::get<std::string>(header.properties[0].value), "Gnomonic");
    }
}

TEST(XisfHeader, OnlyChildrenOfTheFirstImageCountWithAnyPrefixAndPadding)
{
    std::string text = "<x:xisf xmlns:x=\"u\"><x:Image><x:Thumbnail><x:FITSKeyword name=\"NO\" "
                       "value=\"1\"/></x:Thumbnail><x:FITSKeyword name=\"OBJECT  \" "
                       "value=\"&apos;A &amp; B&#39;\"/></x:Image>";
    text.append(100, '\0');
    const auto header = parseXisfHeader(text, noAttachment);
    ASSERT_EQ(header.keywords.size(), 1U);
    EXPECT_EQ(header.keywords[0].name, "OBJECT");
    EXPECT_EQ(header.keywords[0].value, "'A & B'");
    EXPECT_TRUE(parseXisfHeader(document(""), noAttachment).properties.empty());
}

TEST(XisfHeader, DistortionPropertiesArePassedOverUnread)
{
    const std::string spline =
        "<Property id=\"PCL:AstrometricSolution:SplineWorldTransformation:Control\" "
        "type=\"F64Vector\" location=\"attachment:0:99999999999\"/>"
        "<Property id=\"Transformation_ImageToProjection\" type=\"C64Vector\" "
        "location=\"broken\"/>";
    EXPECT_TRUE(parseXisfHeader(document(spline), noAttachment).properties.empty());
}

TEST(XisfHeader, HostileTextIsRefused)
{
    std::string nested;
    for (int i = 0; i < 100000; ++i)
        nested += "<a>";
    for (const std::string& text :
         {std::string(), std::string("<xisf><Image"), std::string("<xisf></xisf"),
          std::string("<!DOCTYPE x [<!ENTITY a \"aaaa\">]><xisf><Image>&a;</Image></xisf>"),
          document("<FITSKeyword name=\"A\" value=\"&b;\"/>"), document(nested),
          document("<Property id=\"no end\">")})
        EXPECT_THROW(parseXisfHeader(text, noAttachment), acl::Error) << text.substr(0, 80);
    for (const char* rest :
         {"type=\"C64Vector\" location=\"inline:hex\">00</Property>",
          "type=\"F64Vector\" location=\"inline:hex\">0011</Property>",
          "type=\"F64Vector\" location=\"inline:hex\">0g</Property>",
          "type=\"F64Vector\" location=\"inline:base64\">A</Property>",
          "type=\"F64Vector\" location=\"inline:rot13\">AA</Property>",
          "type=\"F64Vector\" location=\"attachment:0:99999999999\"/>",
          "type=\"F64Vector\" location=\"attachment:0:16\"/>", "type=\"F64Vector\"/>",
          "type=\"I8Vector\" compression=\"zlib:999999999\" location=\"inline:hex\">00</Property>",
          "type=\"I8Vector\" compression=\"zlib:8\" location=\"inline:hex\">00</Property>"})
        EXPECT_THROW(parseXisfHeader(document(kReference + rest), noAttachment), acl::Error)
            << rest;
}
