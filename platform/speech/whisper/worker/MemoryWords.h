// Which complaints mean that memory ran out. The library has no other way to say so.
#pragma once

#include <exception>
#include <new>
#include <string_view>
#include <system_error>

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

/// Of what was thrown, also by this program. A thread that can't be had lacks its stack.
inline bool meansNoMemory(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return true;
    const auto* const system = dynamic_cast<const std::system_error*>(&error);
    return system && system->code() == std::errc::resource_unavailable_try_again;
}

}  // namespace korvane::whisper
