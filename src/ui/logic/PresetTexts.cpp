#include "ui/logic/PresetTexts.h"

#include "ui/logic/Stages.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorbel {

std::string_view title(PresetFilter filter) {
    switch (filter) {
    case PresetFilter::all:
        return "All presets";
    case PresetFilter::factory:
        return "Factory";
    case PresetFilter::mine:
        return "Mine";
    }
    return {};
}

bool passes(PresetFilter filter, const Preset &preset) {
    const bool isMine = preset.category == Preset::Category::user;
    return filter == PresetFilter::all || isMine == (filter == PresetFilter::mine);
}

int countOf(PresetFilter filter, const std::vector<Preset> &presets) {
    return static_cast<int>(std::ranges::count_if(
        presets, [filter](const Preset &preset) { return passes(filter, preset); }));
}

std::string descriere(const Preset &preset) {
    std::string text = fmt::format("{} bands", preset.bands.size());
    if (const int stages = spatialStagesOn(preset.spatial); stages > 0)
        text += fmt::format(" · {} spatial stage{}", stages, stages == 1 ? "" : "s");
    return text;
}

std::string copyName(std::string_view name, const std::vector<Preset> &presets) {
    std::string copy = fmt::format("{} (copy)", name);
    for (int number = 2; std::ranges::find(presets, copy, &Preset::name) != presets.end(); ++number)
        copy = fmt::format("{} (copy {})", name, number);
    return copy;
}

std::string fileNameFor(std::string_view name) {
    constexpr std::string_view refused = "/\\:*?\"<>|";
    constexpr std::size_t maximumBytes = 200;
    std::string file(name);
    for (char &letter : file)
        if (refused.find(letter) != std::string_view::npos ||
            static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f)
            letter = '-';
    if (file.size() > maximumBytes) {
        std::size_t end = maximumBytes;
        while ((static_cast<unsigned char>(file[end]) & 0xc0U) == 0x80U) // inside a UTF-8 sequence
            --end;
        file.resize(end);
    }
    const auto first = file.find_first_not_of(". ");
    if (first == std::string::npos)
        return "Preset";
    return file.substr(first, file.find_last_not_of(". ") - first + 1);
}

} // namespace quorbel
