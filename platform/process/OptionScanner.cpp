#include "platform/process/OptionScanner.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "platform/process/UsageError.h"

namespace korvane {
namespace {

using Value = OptionRule::Value;

class Scanner {
  public:
    Scanner(const std::vector<std::string>& arguments, const std::vector<OptionRule>& rules)
        : arguments_(arguments), rules_(rules) {}

    ScannedArguments run() {
        while (next_ < arguments_.size()) {
            const std::string& argument = arguments_[next_++];
            if (argument == "--") {
                result_.operands.insert(result_.operands.end(),
                                        arguments_.begin() + static_cast<std::ptrdiff_t>(next_),
                                        arguments_.end());
                break;
            }
            if (argument.starts_with("--"))
                readLong(argument);
            else if (argument.size() > 1 && argument.front() == '-')
                readShort(argument);
            else
                result_.operands.push_back(argument);
        }
        return std::move(result_);
    }

  private:
    void readLong(const std::string& argument) {
        const auto equals = argument.find('=');
        const std::string name = argument.substr(2, equals == std::string::npos ? equals : equals - 2);
        const OptionRule& rule = longRule(name);
        const std::string shown = "--" + std::string(rule.longName);
        if (rule.value != Value::none) {
            store(rule, equals == std::string::npos ? following(rule, shown) : argument.substr(equals + 1),
                  shown);
            return;
        }
        if (equals != std::string::npos)
            throw UsageError(shown + " takes no value.");
        store(rule, "", shown);
    }

    void readShort(const std::string& argument) {
        for (std::size_t i = 1; i < argument.size(); ++i) {
            const auto rule = std::find_if(rules_.begin(), rules_.end(),
                                           [&](const auto& known) { return known.shortName == argument[i]; });
            const std::string shown = std::string("-") + argument[i];
            if (rule == rules_.end())
                throw UsageError("There is no option " + (i == 1 ? argument : shown) + " here.");
            if (rule->value == Value::none) {
                store(*rule, "", shown);
                continue;
            }
            std::string value = argument.substr(i + 1);
            if (value.starts_with('='))
                value.erase(0, 1);
            store(*rule, i + 1 < argument.size() ? value : following(*rule, shown), shown);
            return;
        }
    }

    const OptionRule& longRule(const std::string& name) const {
        const OptionRule* found = nullptr;
        for (const auto& rule : rules_) {
            if (rule.longName == name)
                return rule;
            if (name.empty() || !rule.longName.starts_with(name))
                continue;
            if (found)
                throw UsageError("--" + name + " may mean --" + std::string(found->longName) + " or --" +
                                 std::string(rule.longName) + ".");
            found = &rule;
        }
        if (!found)
            throw UsageError("There is no option --" + name + " here.");
        return *found;
    }

    // The next argument as a value. One that looks like an option is more likely a forgotten value.
    std::string following(const OptionRule& rule, const std::string& shown) {
        if (next_ == arguments_.size())
            throw UsageError(shown + " needs a value.");
        const std::string& value = arguments_[next_];
        const bool likeOption =
            value.starts_with("--") || (rule.value == Value::one && value.size() > 1 && value[0] == '-');
        if (likeOption)
            throw UsageError(shown + " needs a value, and \"" + value + "\" looks like an option.");
        ++next_;
        return value;
    }

    void store(const OptionRule& rule, std::string value, const std::string& shown) {
        auto& values = result_.options[std::string(rule.longName)];
        if (rule.value != Value::none && value.empty())
            throw UsageError(shown + " needs a value.");
        if (rule.value == Value::one && !values.empty())
            throw UsageError("--" + std::string(rule.longName) + " was given twice.");
        values.push_back(std::move(value));
    }

    const std::vector<std::string>& arguments_;
    const std::vector<OptionRule>& rules_;
    std::size_t next_ = 0;
    ScannedArguments result_;
};

}  // namespace

std::string ScannedArguments::value(std::string_view longName) const {
    const auto found = options.find(longName);
    return found == options.end() ? std::string() : found->second.back();
}

ScannedArguments scanArguments(const std::vector<std::string>& arguments,
                               const std::vector<OptionRule>& rules) {
    return Scanner(arguments, rules).run();
}

}  // namespace korvane
