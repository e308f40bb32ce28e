#include "Files.h"

#include <stdexcept>

namespace bench
{

void Fail(const std::string& words)
{
    throw std::runtime_error(words);
}

File OpenFile(const std::string& file, const char* mode)
{
    File opened(std::fopen(file.c_str(), mode), &std::fclose);
    if (!opened) {
        Fail("can not open " + file);
    }
    return opened;
}

std::string ReadFile(const std::string& file)
{
    const File opened = OpenFile(file, "rb");
    std::fseek(opened.get(), 0, SEEK_END);
    std::string text(static_cast<std::size_t>(std::ftell(opened.get())), '\0');
    std::rewind(opened.get());
    if (std::fread(text.data(), 1, text.size(), opened.get()) != text.size()) {
        Fail("can not read " + file);
    }
    return text;
}

} // namespace bench
