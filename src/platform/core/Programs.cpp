#include "platform/core/Programs.h"

#include <algorithm>

namespace quorbel {
namespace {

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool fits(const ProgramNames &wanted, const ProgramNames &program) {
    const auto fitsOne = [](const std::string &name, const std::string &actual) {
        return name.empty() || name == actual;
    };
    return fitsOne(wanted.sandbox, program.sandbox) && fitsOne(wanted.binary, program.binary) &&
           fitsOne(wanted.applicationID, program.applicationID) &&
           fitsOne(wanted.name, program.name);
}

} // namespace

// Backtracks to the last star only: earlier stars cannot yield further matches.
bool matchesPattern(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0; // in the text
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            afterStar = t;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || lowered(pattern[p]) == lowered(text[t]))) {
            ++p;
            // A character may take several bytes of UTF-8.
            do
                ++t;
            while (pattern[p - 1] == '?' && t < text.size() &&
                   (static_cast<unsigned char>(text[t]) & 0xC0U) == 0x80U);
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

const ProgramRule *ruleFor(const ProgramRules &rules, const ProgramNames &program,
                           const std::string &title) {
    const auto found =
        std::find_if(rules.rules.begin(), rules.rules.end(), [&](const ProgramRule &rule) {
            return !rule.program.areEmpty() && fits(rule.program, program) &&
                   (rule.title.empty() || matchesPattern(rule.title, title));
        });
    return found == rules.rules.end() ? nullptr : &*found;
}

} // namespace quorbel
