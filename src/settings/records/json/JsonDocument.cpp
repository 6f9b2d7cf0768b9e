#include "settings/records/json/JsonDocument.h"

#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonLiterals.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr std::size_t maximumDepth = 512;
constexpr std::size_t maximumPlainKey = 40;

/// Builds the document from the parser's events and tracks the current value's path. The library's
/// own builder has neither a depth limit nor paths in its errors.
class DocumentBuilder final : public nlohmann::json_sax<json> {
  public:
    explicit DocumentBuilder(std::string_view text) : text_(text) {}

    [[nodiscard]] json take() { return std::move(root_); }

    bool null() override { return add(nullptr) != nullptr; }
    bool boolean(bool value) override { return add(value) != nullptr; }
    bool number_integer(number_integer_t value) override { return add(value) != nullptr; }
    bool number_unsigned(number_unsigned_t value) override { return add(value) != nullptr; }
    bool number_float(number_float_t value, const string_t &) override {
        return add(value) != nullptr;
    }
    bool string(string_t &value) override { return add(std::move(value)) != nullptr; }
    bool binary(binary_t &) override { return false; }

    bool start_object(std::size_t) override { return open(json::object()); }
    bool start_array(std::size_t) override { return open(json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t &value) override {
        open_.back().key = std::move(value);
        return true;
    }

    bool parse_error(std::size_t position, const std::string &,
                     const nlohmann::detail::exception &error) override {
        throw DecodingError(path(), "not valid JSON at " + place(position) + ": " + reason(error));
    }

    [[noreturn]] void fail(std::size_t index, const std::string &why) const {
        throw DecodingError(path(), "not valid JSON at " + place(index + 1) + ": " + why);
    }

  private:
    struct Container {
        json *value;
        std::string key; ///< the current member's key, in an object
    };

    json *add(json value) {
        if (open_.empty()) {
            root_ = std::move(value);
            return &root_;
        }
        Container &container = open_.back();
        if (container.value->is_array())
            return &container.value->emplace_back(std::move(value));
        json &member = (*container.value)[container.key];
        member = std::move(value);
        return &member;
    }

    bool open(json container) {
        if (open_.size() == maximumDepth)
            throw DecodingError("", "nested more than " + std::to_string(maximumDepth) +
                                        " levels deep");
        open_.push_back({add(std::move(container)), {}});
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    /// Path of the current value: in an array the next element, or the last if it is still open.
    [[nodiscard]] std::string path() const {
        std::string result;
        for (const Container &container : open_) {
            const bool innermost = &container == &open_.back();
            if (container.value->is_array())
                result += '[' + std::to_string(container.value->size() - (innermost ? 0 : 1)) + ']';
            else if (!container.key.empty())
                result += (result.empty() ? "" : ".") + printableKey(container.key);
        }
        return result;
    }

    static std::string printableKey(const std::string &key) {
        const bool plain =
            key.size() <= maximumPlainKey && std::all_of(key.begin(), key.end(), [](char c) {
                return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '_';
            });
        return plain ? key : quotedText(key);
    }

    [[nodiscard]] std::string place(std::size_t position) const {
        const std::string_view before = text_.substr(0, position == 0 ? 0 : position - 1);
        const auto line = 1 + std::count(before.begin(), before.end(), '\n');
        const std::size_t lineStart = before.rfind('\n') + 1; // 0 without a line break
        return "line " + std::to_string(line) + ", column " +
               std::to_string(before.size() - lineStart + 1);
    }

    /// The library's text without its prefix and its excerpt, which may be long and unprintable.
    static std::string reason(const nlohmann::detail::exception &error) {
        std::string_view words = error.what();
        if (words.find("number overflow") != std::string_view::npos)
            return "number too large";
        if (const auto end = words.find("; last read: "); end != std::string_view::npos)
            words = words.substr(0, end);
        if (const auto start = words.find(" - "); start != std::string_view::npos)
            words.remove_prefix(start + 3);
        return std::string(words);
    }

    std::string_view text_;
    json root_;
    std::vector<Container> open_;
};

} // namespace

json parseJson(std::string_view text) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos)
        throw DecodingError("", "empty, holds no JSON");
    DocumentBuilder builder(text);
    json::sax_parse(text, &builder);
    // The library treats a zero byte as the end of the text.
    if (const auto zero = text.find('\0'); zero != std::string_view::npos)
        builder.fail(zero, "zero byte");
    return builder.take();
}

std::string excerpt(const json &value) {
    if (value.is_string())
        return quotedText(value.get_ref<const std::string &>());
    if (value.is_array())
        return "an array";
    if (value.is_object())
        return "an object";
    return value.dump();
}

} // namespace quorbel
