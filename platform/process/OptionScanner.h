// Splits a command's arguments into options and operands as people know it from other commands.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

struct OptionRule {
    char shortName;             ///< 0: none
    std::string_view longName;  ///< without the dashes
    enum class Value {
        none,
        one,   ///< may be given once
        many,  ///< may be given again, and its value may begin with a dash
    } value;
};

struct ScannedArguments {
    std::map<std::string, std::vector<std::string>, std::less<>> options;  ///< by long name, in their order
    std::vector<std::string> operands;

    bool has(std::string_view longName) const { return options.contains(longName); }
    /// The value of an option that takes one; empty when it wasn't given.
    std::string value(std::string_view longName) const;
};

/// Reads "-l en-US", "-len-US", "--language en-US", "--language=en-US", any beginning of a long name that
/// fits only one, short options written together ("-qo FILE"), and "--" before operands that begin with a
/// dash. A lone "-" is an operand or a value. \throws UsageError
ScannedArguments scanArguments(const std::vector<std::string>& arguments,
                               const std::vector<OptionRule>& rules);

}  // namespace korvane
