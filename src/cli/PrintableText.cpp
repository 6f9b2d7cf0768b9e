#include "cli/PrintableText.h"

namespace quorbel {

std::string printable(const std::string &text) {
    std::string shown;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        const auto next = static_cast<unsigned char>(text.c_str()[index + 1]);
        if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) { // U+0080 to U+009F
            shown += '?';
            ++index;
        } else {
            shown += byte < 0x20 || byte == 0x7F ? '?' : text[index];
        }
    }
    return shown;
}

} // namespace quorbel
