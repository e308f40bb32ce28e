#include "Peers.h"

#include <expat.h>

#include <cstdio>
#include <memory>
#include <type_traits>

namespace bench
{

namespace
{

void OnStart(void* builder, const XML_Char* tag, const XML_Char** attributes)
{
    auto* const to = static_cast<Builder*>(builder);
    to->Begin(tag);
    for (; *attributes != nullptr; attributes += 2) {
        to->Attribute(attributes[0], attributes[1]);
    }
}

void OnEnd(void* builder, const XML_Char* /*tag*/)
{
    static_cast<Builder*>(builder)->End();
}

void Load(const std::string& file, Footprint& footprint)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(std::fopen(file.c_str(), "rb"), &std::fclose);
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr),
                                                                                          &XML_ParserFree);
    if (!opened || !parser) {
        Fail("expat: can not open " + file);
    }
    Builder builder(footprint);
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), &OnStart, &OnEnd);
    constexpr int piece = 1 << 16;
    bool isLast = false;
    while (!isLast) {
        void* const room = XML_GetBuffer(parser.get(), piece);
        if (room == nullptr) {
            Fail("expat: no memory");
        }
        const auto count = static_cast<int>(std::fread(room, 1, piece, opened.get()));
        isLast = count < piece;
        if (XML_ParseBuffer(parser.get(), count, isLast ? 1 : 0) != XML_STATUS_OK) {
            Fail("expat: can not parse " + file);
        }
    }
}

} // namespace

const Peer Expat = {"expat", &Load, nullptr};

} // namespace bench
