#include "engine/astro/xisf_header.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>

#include <expat.h>

#include "engine/astro/projection.h"
#include "engine/astro/property_value.h"

namespace acl {

namespace {

constexpr int kMostDepth = 64;
constexpr std::size_t kMostKeywords = 65536;
constexpr std::size_t kMostContentBytes = 262144;

constexpr std::array<std::string_view, 6> kWantedProperties{
    "ProjectionSystem",           "ReferenceCelestialCoordinates",  "ReferenceImageCoordinates",
    "ReferenceNativeCoordinates", "CelestialPoleNativeCoordinates", "LinearTransformationMatrix"};

bool isWanted(std::string_view id)
{
    if (id.starts_with("PCL:"))
        id.remove_prefix(4);
    constexpr std::string_view kPrefix = "AstrometricSolution:";
    if (!id.starts_with(kPrefix))
        return false;
    id.remove_prefix(kPrefix.size());
    return std::find(kWantedProperties.begin(), kWantedProperties.end(), id) !=
           kWantedProperties.end();
}

std::string_view withoutPrefix(std::string_view name)
{
    return name.substr(name.rfind(':') + 1); // npos + 1 is 0: the whole name
}

std::string attribute(const XML_Char** attributes, std::string_view name)
{
    for (; *attributes; attributes += 2)
        if (name == attributes[0])
            return attributes[1];
    return {};
}

std::string trimmedName(std::string name)
{
    name.erase(name.find_last_not_of(' ') + 1);
    return name;
}

/// Follows the parser through the document and keeps what the first image holds.
class HeaderHandler
{
public:
    HeaderHandler(XML_Parser xmlParser, const AttachmentReader& reader);
    void parse(std::string_view xml);

    XISFHeader header;

private:
    template <typename Step>
    static void guarded(void* self, Step&& step);
    static void onStart(void* self, const XML_Char* name, const XML_Char** attributes);
    static void onEnd(void* self, const XML_Char* name);
    static void onText(void* self, const XML_Char* text, int size);
    static void onDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int);

    void start(std::string_view qualifiedName, const XML_Char** attributes);
    void startChild(std::string_view name, const XML_Char** attributes);
    void startData(const XML_Char** attributes);
    void text(std::string_view part);
    void end();

    static constexpr int kImageDepth = 2; ///< images are children of the root element

    XML_Parser parser;
    const AttachmentReader& attachment;
    std::exception_ptr failure;
    PropertyElement property;
    int depth = 0;
    bool insideImage = false;
    bool insideProperty = false;
    bool complete = false; ///< the first image has ended
};

HeaderHandler::HeaderHandler(XML_Parser xmlParser, const AttachmentReader& reader)
    : parser(xmlParser)
    , attachment(reader)
{
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onText);
    XML_SetStartDoctypeDeclHandler(parser, onDoctype);
}

void HeaderHandler::parse(std::string_view xml)
{
    const XML_Status status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1);
    if (failure)
        std::rethrow_exception(failure);
    if (status != XML_STATUS_OK && !complete)
        throw Error(std::string("Invalid XISF header: ") +
                    XML_ErrorString(XML_GetErrorCode(parser)));
}

/// Runs a step of the handler. An exception must not pass through the C parser: it is kept, the
/// parser stopped, and `parse` throws it on.
template <typename Step>
void HeaderHandler::guarded(void* self, Step&& step)
{
    auto& handler = *static_cast<HeaderHandler*>(self);
    if (handler.failure || handler.complete)
        return;
    try {
        step(handler);
    } catch (...) {
        handler.failure = std::current_exception();
        XML_StopParser(handler.parser, XML_FALSE);
    }
}

void HeaderHandler::onStart(void* self, const XML_Char* name, const XML_Char** attributes)
{
    guarded(self, [&](HeaderHandler& handler) { handler.start(name, attributes); });
}

void HeaderHandler::onEnd(void* self, const XML_Char*)
{
    guarded(self, [](HeaderHandler& handler) { handler.end(); });
}

void HeaderHandler::onText(void* self, const XML_Char* text, int size)
{
    guarded(self, [&](HeaderHandler& handler) {
        handler.text({text, static_cast<std::size_t>(size)});
    });
}

void HeaderHandler::onDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    guarded(self,
            [](HeaderHandler&) { throw Error("Invalid XISF header: document type declaration"); });
}

void HeaderHandler::start(std::string_view qualifiedName, const XML_Char** attributes)
{
    if (++depth > kMostDepth)
        throw Error("Invalid XISF header: elements nested too deep");
    const std::string_view name = withoutPrefix(qualifiedName);
    if (depth == kImageDepth)
        insideImage = name == "Image";
    else if (insideImage && depth == kImageDepth + 1)
        startChild(name, attributes);
    else if (insideProperty && depth == kImageDepth + 2 && name == "Data")
        startData(attributes);
}

void HeaderHandler::startChild(std::string_view name, const XML_Char** attributes)
{
    if (name == "FITSKeyword" && header.keywords.size() < kMostKeywords)
        header.keywords.push_back({trimmedName(attribute(attributes, "name")),
                                   attribute(attributes, "value"),
                                   attribute(attributes, "comment")});
    insideProperty = name == "Property" && isWanted(attribute(attributes, "id"));
    if (!insideProperty)
        return;
    property = {};
    property.id = attribute(attributes, "id");
    property.type = attribute(attributes, "type");
    property.value = attribute(attributes, "value");
    property.location = attribute(attributes, "location");
    property.byteOrder = attribute(attributes, "byteOrder");
    property.compression = attribute(attributes, "compression");
}

void HeaderHandler::startData(const XML_Char** attributes)
{
    property.content.clear();
    property.dataEncoding = attribute(attributes, "encoding");
    if (std::string own = attribute(attributes, "compression"); !own.empty())
        property.compression = std::move(own);
    if (std::string own = attribute(attributes, "byteOrder"); !own.empty())
        property.byteOrder = std::move(own);
}

void HeaderHandler::text(std::string_view part)
{
    if (!insideProperty)
        return;
    if (property.content.size() + part.size() > kMostContentBytes)
        throw Error("Invalid XISF property: oversized block");
    property.content += part;
}

void HeaderHandler::end()
{
    if (insideProperty && depth == kImageDepth + 1) {
        header.properties.push_back(readProperty(property, attachment));
        insideProperty = false;
    }
    if (insideImage && depth == kImageDepth) {
        complete = true;
        XML_StopParser(parser, XML_FALSE);
    }
    --depth;
}

} // namespace

XISFHeader parseXisfHeader(std::string_view xml, const AttachmentReader& attachment)
{
    xml = xml.substr(0, xml.find_last_not_of('\0') + 1); // writers pad with NUL bytes
    struct Free
    {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };
    // The format prescribes the encoding; what a header declares ("utf8") may have no known name.
    const std::unique_ptr<XML_ParserStruct, Free> parser(XML_ParserCreate("UTF-8"));
    if (!parser)
        throw std::bad_alloc();
    HeaderHandler handler(parser.get(), attachment);
    handler.parse(xml);
    return std::move(handler.header);
}

} // namespace acl
