#include "Loading.h"

#include "Terminal.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

/// What the library said in this thread since a load began; null while nobody listens.
thread_local std::string* s_heard = nullptr;

/// Has no state of its own, so that it can be written to from several threads.
class CListener : public std::streambuf
{
protected:
    int_type overflow(int_type character) override
    {
        if (s_heard != nullptr && !traits_type::eq_int_type(character, traits_type::eof())) {
            s_heard->push_back(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* text, std::streamsize length) override
    {
        if (s_heard != nullptr) {
            s_heard->append(text, static_cast<std::size_t>(length));
        }
        return length;
    }
};

class CListening
{
public:
    explicit CListening(std::string* heard) : m_former(s_heard) { s_heard = heard; }
    CListening(const CListening&) = delete;
    CListening& operator=(const CListening&) = delete;
    ~CListening() { s_heard = m_former; }

private:
    std::string* m_former;
};

std::vector<std::string> UnknownTags(const std::string& heard)
{
    constexpr std::string_view announcement = "Found invalid tag: ";
    std::vector<std::string> tags;
    std::size_t begin = heard.find(announcement);
    while (begin != std::string::npos) {
        begin += announcement.size();
        const std::size_t next = heard.find("\n" + std::string(announcement), begin);
        const std::size_t end = next == std::string::npos ? heard.find_last_not_of('\n') + 1 : next;
        tags.push_back(heard.substr(begin, std::max(end, begin) - begin));
        begin = next == std::string::npos ? next : next + 1;
    }
    return tags;
}

/// Why a file can not be read at all; empty if it can.
std::string WhyUnreadable(const std::string& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found || (error && status.type() == fs::file_type::none)) {
        return error ? error.message() : std::make_error_code(std::errc::no_such_file_or_directory).message();
    }
    if (status.type() == fs::file_type::directory) {
        return "is a folder";
    }
    if (status.type() != fs::file_type::regular) {
        return {}; // opening a pipe only to see whether it can be opened would take its content
    }
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return std::error_code(errno, std::generic_category()).message();
    }
    close(descriptor);
    return fs::file_size(file, error) == 0 && !error ? "is empty" : "";
}

/// Why the library did not load a file; empty if it did.
std::string WhyNotLoaded(const std::string& file, CDeviceFootprint& document)
{
    try {
        document.m_formatVersion.Clear(); // a new document has one
        if (document.Load(file)) {
            return document.IsEmpty() ? "no footprint in it" : "";
        }
        const std::string words = CDeviceFootprint::GetLastError();
        CDeviceFootprint::SetLastError(""); // or the next failure without a text of its own would get these words
        if (!words.empty()) {
            return "damaged: " + words;
        }
        return document.IsEmpty() ? "no footprint in it" : "damaged: it ends too early, or an end tag is wrong";
    } catch (const std::out_of_range&) {
        return "damaged: blank lines between the elements, or no tag in a line";
    } catch (const std::bad_alloc&) {
        return "too large for the memory of this machine";
    } catch (const std::exception& exception) {
        return std::string("damaged: ") + exception.what();
    }
}

} // namespace

CLibraryTalk::CLibraryTalk() : m_listener(std::make_unique<CListener>()), m_former(std::cout.rdbuf(m_listener.get())) {}

CLibraryTalk::~CLibraryTalk()
{
    std::cout.rdbuf(m_former);
}

bool LoadFootprint(const std::string& file, CDeviceFootprint& document, std::string& error,
                   std::vector<std::string>* unknownTags)
{
    std::string why = WhyUnreadable(file);
    if (why.empty()) {
        std::string heard;
        const CListening listening(unknownTags == nullptr ? nullptr : &heard);
        why = WhyNotLoaded(file, document);
        if (unknownTags != nullptr) {
            *unknownTags = UnknownTags(heard);
        }
    }
    if (why.empty()) {
        return true;
    }
    error = Harmless(file) + ": " + Harmless(why);
    return false;
}

std::vector<std::string> FootprintFiles(const std::string& path)
{
    if (!fs::is_directory(fs::status(path))) {
        if (!fs::exists(path)) {
            throw fs::filesystem_error("no such file or folder", path,
                                       std::make_error_code(std::errc::no_such_file_or_directory));
        }
        return {path};
    }
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
        std::error_code error;
        const fs::file_type type = entry.status(error).type();
        // A link that leads nowhere is a finding for whoever loads it; a pipe would be waited for without end.
        const bool isFile = type == fs::file_type::regular || type == fs::file_type::not_found || error;
        if (isFile && entry.path().extension() == ".xml" &&
            entry.path().filename() != CDeviceFootprint::DeviceFootprintLinkFileName) {
            files.push_back(entry.path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace footprint
