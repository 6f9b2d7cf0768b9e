#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorbel {

/// Where coding stands in the document: a chain that lives on the stack of the calls and becomes
/// text only when something has to be reported.
class CodingPath {
  public:
    CodingPath() = default;

    [[nodiscard]] CodingPath key(std::string_view key) const { return {this, key, 0}; }
    [[nodiscard]] CodingPath index(std::size_t index) const { return {this, {}, index}; }

    /// As in `presets[3].bands[0].filterType`; empty at the top.
    [[nodiscard]] std::string text() const {
        std::string result = parent_ == nullptr ? std::string() : parent_->text();
        append(result);
        return result;
    }

  private:
    CodingPath(const CodingPath *parent, std::string_view key, std::size_t index)
        : parent_(parent), key_(key), index_(index) {}

    void append(std::string &text) const {
        if (parent_ == nullptr)
            return;
        if (key_.empty())
            text += '[' + std::to_string(index_) + ']';
        else
            text.append(text.empty() ? "" : ".").append(key_);
    }

    const CodingPath *parent_ = nullptr;
    std::string_view key_;
    std::size_t index_ = 0;
};

} // namespace quorbel
