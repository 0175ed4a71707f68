#include "bench/window/FontFiles.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace korvane::bench {
namespace {

constexpr std::size_t kDirectory = 12;  ///< bytes before the list of tables
constexpr std::size_t kEntry = 16;

std::uint32_t number(const std::string& bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes.at(at + static_cast<std::size_t>(i)));
    return value;
}

void append(std::string& bytes, std::uint32_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift & 0xff));
}

/// What the format calls "name": family, style, full and PostScript name, in English, for Windows' encoding.
std::string nameTable(const std::string& family, const std::string& postscript) {
    const std::pair<int, std::string> names[] = {
        {1, family}, {2, "Regular"}, {4, family + " Regular"}, {6, postscript}};
    std::string texts;
    std::string table;
    append(table, 0, 2);
    append(table, std::size(names), 2);
    append(table, 6 + 12 * std::size(names), 2);
    for (const auto& [id, text] : names) {
        for (const std::uint32_t value :
             {3U, 1U, 0x409U, static_cast<std::uint32_t>(id), static_cast<std::uint32_t>(2 * text.size()),
              static_cast<std::uint32_t>(texts.size())})
            append(table, value, 2);
        for (const char c : text)
            append(texts, static_cast<unsigned char>(c), 2);
    }
    return table + texts;
}

/// The same font under another name. Sums over the tables stay those of the old name; readers ignore them.
std::string renamed(const std::string& font, const std::string& family, const std::string& postscript) {
    const std::size_t tables = number(font, 4, 2);
    std::string head = font.substr(0, kDirectory);
    std::string body;
    for (std::size_t i = 0; i < tables; ++i) {
        const std::size_t entry = kDirectory + kEntry * i;
        const std::string tag = font.substr(entry, 4);
        const std::string table = tag == "name"
                                      ? nameTable(family, postscript)
                                      : font.substr(number(font, entry + 8, 4), number(font, entry + 12, 4));
        head += font.substr(entry, 8);
        append(head, static_cast<std::uint32_t>(kDirectory + kEntry * tables + body.size()), 4);
        append(head, static_cast<std::uint32_t>(table.size()), 4);
        body += table;
        body.resize((body.size() + 3) / 4 * 4);
    }
    return head + body;
}

}  // namespace

std::filesystem::path makeFontFamilies(const std::filesystem::path& base, const std::filesystem::path& folder,
                                       int count) {
    const auto configuration = folder / "fonts.conf";
    if (std::filesystem::exists(configuration))
        return configuration;
    std::ifstream file(base, std::ios::binary);
    const std::string font{std::istreambuf_iterator<char>(file), {}};
    if (font.size() < kDirectory)
        throw std::runtime_error(base.string() + " is no font");
    std::filesystem::create_directories(folder / "families");
    for (int i = 1; i <= count; ++i) {
        char digits[12];
        std::snprintf(digits, sizeof digits, "%04d", i);
        std::ofstream(folder / "families" / (std::string(digits) + base.extension().string()),
                      std::ios::binary)
            << renamed(font, std::string("Sample ") + digits, std::string("Sample") + digits + "-Regular");
    }
    std::ofstream(configuration)
        << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig>"
        << "<include>/etc/fonts/fonts.conf</include><dir>" << (folder / "families").string()
        << "</dir><cachedir>" << (folder / "cache").string() << "</cachedir></fontconfig>\n";
    return configuration;
}

}  // namespace korvane::bench
