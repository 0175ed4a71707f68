// Which of the library's complaints mean that memory ran out: it has no other way to say so.
#pragma once

#include <string_view>

namespace korvane::whisper {

/// Of what it logs as an error.
constexpr bool speaksOfMemory(std::string_view complaint) {
    const auto says = [complaint](std::string_view words) { return complaint.find(words) != complaint.npos; };
    // Room that it measured out by itself, from the numbers in a model.
    if (says("memory pool") || says("overflow"))
        return false;
    // The loader of programs speaks of a segment when there is no room for a plug-in.
    return says("alloc") || says("memory") || says("map segment");
}

/// Of the assertion that it ends the process with. It looks at memory that it just asked for in no other way.
constexpr bool assertsMemory(std::string_view assertion) {
    const auto says = [assertion](std::string_view words) { return assertion.find(words) != assertion.npos; };
    return says("!= NULL") && (says("mem") || says("alloc"));
}

}  // namespace korvane::whisper
