#include "equalizer/AnalogPrototype.h"
#include "equalizer/SectionDesign.h"
#include "settings/interchange/BandResponse.h"
#include "settings/interchange/DecimalNumber.h"
#include "settings/interchange/EqualizerLine.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/interchange/TextEncoding.h"
#include "settings/records/PlayedFilterType.h"
#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace quorbel {

namespace {

using FilterType = EQBand::FilterType;

constexpr std::array<std::pair<std::string_view, FilterType>, 9> filterTypes{{
    {"PK", FilterType::parametric},
    {"LS", FilterType::lowShelf},
    {"LSC", FilterType::lowShelf},
    {"HS", FilterType::highShelf},
    {"HSC", FilterType::highShelf},
    {"LP", FilterType::lowPass},
    {"LPQ", FilterType::lowPass},
    {"HP", FilterType::highPass},
    {"HPQ", FilterType::highPass},
}};

constexpr float largestPreampDB = 1000.0F;

/// The nearest 32-bit value; none unless it is finite, normal and above 0.
std::optional<float> positive(double value) {
    if (!(value >= static_cast<double>(std::numeric_limits<float>::min())) ||
        value > static_cast<double>(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(value);
}

struct NumberedLine {
    std::size_t number = 0; ///< from 1
    EqualizerLine content;
};

std::vector<NumberedLine> linesOf(std::string_view text) {
    std::vector<NumberedLine> lines;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        if (line.find('\0') != std::string_view::npos)
            throw InterchangeError(number, "this is not a text file");
        EqualizerLine content = parseEqualizerLine(line);
        if (!std::holds_alternative<EmptyLine>(content))
            lines.push_back({number, std::move(content)});
        text.remove_prefix(end);
        if (!text.empty())
            text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);
    }
    return lines;
}

/// The decimal mark of most numbers in the file.
DecimalMark fileMarkOf(const std::vector<NumberedLine> &lines) {
    std::size_t points = 0;
    std::size_t commas = 0;
    const auto count = [&](const std::string &number, Grouping grouping) {
        const DecimalMark mark = evidentMark(number, grouping);
        points += mark == DecimalMark::point ? 1 : 0;
        commas += mark == DecimalMark::comma ? 1 : 0;
    };
    for (const NumberedLine &line : lines) {
        if (const auto *preamp = std::get_if<PreampLine>(&line.content))
            count(preamp->gain, Grouping::never);
        const auto *filter = std::get_if<FilterLine>(&line.content);
        if (filter == nullptr)
            continue;
        if (filter->frequency)
            count(*filter->frequency, filter->kilohertz ? Grouping::never : Grouping::possible);
        for (const auto &number : {filter->gain, filter->q, filter->octaves})
            if (number)
                count(*number, Grouping::never);
    }
    if (points == commas)
        return DecimalMark::unknown;
    return points > commas ? DecimalMark::point : DecimalMark::comma;
}

class TextReader {
  public:
    explicit TextReader(std::string_view text)
        : lines_(linesOf(text)), fileMark_(fileMarkOf(lines_)) {}

    EqualizerText read() {
        for (const NumberedLine &line : lines_) {
            line_ = line.number;
            std::visit([this](const auto &content) { take(content); }, line.content);
        }
        if (result_.bands.empty() && preampLine_ == 0) {
            if (result_.skipped.empty())
                throw InterchangeError(0, "the text is empty");
            throw InterchangeError(result_.skipped.front().line,
                                   result_.skipped.front().reason +
                                       " (no line holds a filter or a preamp)");
        }
        if (preampLine_ != 0)
            result_.preampDB = static_cast<float>(preampDB_);
        if (preampDB_ < minimumBandGainDB || preampDB_ > maximumBandGainDB)
            limit(preampLine_, fmt::format("a preamp of {} dB", static_cast<float>(preampDB_)),
                  minimumBandGainDB, maximumBandGainDB, " dB");
        return std::move(result_);
    }

  private:
    void take(const EmptyLine & /*empty*/) {}
    void take(const RefusedLine &refused) { skip(refused.reason); }
    void take(const ChannelLine &channel) { everyChannel_ = channel.everything; }

    void take(const PreampLine &preamp) {
        if (!everyChannel_)
            return skip("a preamp for one channel only is not supported");
        const auto gain = number(preamp.gain, "the preamp");
        if (!gain)
            return;
        if (std::abs(*gain) > largestPreampDB)
            return skip("a preamp beyond 1000 dB cannot be meant");
        preampDB_ += static_cast<double>(*gain);
        preampLine_ = line_;
    }

    void take(const FilterLine &filter) {
        if (!everyChannel_)
            return skip("a filter for one channel only is not supported");
        const auto *const type =
            std::find_if(filterTypes.begin(), filterTypes.end(),
                         [&](const auto &entry) { return entry.first == filter.type; });
        if (type == filterTypes.end())
            return skip("the filter type " + quotedText(filter.type) +
                        " is not supported (PK, LS, LSC, HS, HSC, LP, LPQ, HP, HPQ are)");
        EQBand band;
        band.filterType = type->second;
        band.bypassed = !filter.on;
        if (!takeFrequency(filter, band) || !takeGain(filter, band) || !takeQ(filter, band))
            return;
        if (result_.bands.size() == maximumFilters)
            throw InterchangeError(line_, fmt::format("more than {} filters", maximumFilters));
        noteLimits(band);
        result_.bands.push_back({band, line_});
    }

    bool takeFrequency(const FilterLine &filter, EQBand &band) {
        if (!filter.frequency)
            return refuse("Fc is missing");
        const auto frequency = number(*filter.frequency, "Fc",
                                      filter.kilohertz ? Grouping::never : Grouping::possible);
        if (!frequency)
            return false;
        const auto hertz =
            positive(static_cast<double>(*frequency) * (filter.kilohertz ? 1000.0 : 1.0));
        if (!hertz)
            return refuse("Fc has to be above 0");
        band.frequency = *hertz;
        return true;
    }

    bool takeGain(const FilterLine &filter, EQBand &band) {
        if (!hasGain(playedFilterType(band.filterType)))
            return true;
        if (!filter.gain)
            return refuse("Gain is missing");
        const auto gain = number(*filter.gain, "Gain");
        if (gain)
            band.gainDB = *gain;
        return gain.has_value();
    }

    bool takeQ(const FilterLine &filter, EQBand &band) {
        if (filter.q && filter.octaves)
            return refuse("both Q and BW are given");
        if (!filter.q && !filter.octaves) {
            if (band.filterType == FilterType::parametric)
                return refuse("Q is missing");
            band.q = defaultSlopeQ;
            return true;
        }
        const char *const name = filter.q ? "Q" : "BW";
        const auto value = number(filter.q ? *filter.q : *filter.octaves, name);
        if (!value)
            return false;
        const auto given = static_cast<double>(*value);
        const auto q = positive(filter.q ? given : qualityFromBandwidth(given));
        if (!q)
            return refuse(std::string(name) + " has to be above 0");
        band.q = *q;
        return true;
    }

    void noteLimits(const EQBand &band) {
        if (band.bypassed)
            return;
        const auto note = [this](const char *name, float value, double lowest, double highest,
                                 const char *unit) {
            if (static_cast<double>(value) < lowest || static_cast<double>(value) > highest)
                limit(line_, fmt::format("{} {}", name, value), lowest, highest, unit);
        };
        note("Fc", band.frequency, minimumBandFrequencyHz, playedTopFrequencyHz, " Hz");
        if (hasGain(playedFilterType(band.filterType)))
            note("Gain", band.gainDB, minimumBandGainDB, maximumBandGainDB, " dB");
        note("Q", band.q, lowestPlayedQ(), highestPlayedQ(), "");
    }

    std::optional<float> number(const std::string &text, const char *name,
                                Grouping grouping = Grouping::never) {
        const auto value = readNumber(text, grouping, fileMark_);
        if (!value)
            skip(fmt::format("{} is not a number: {}", name, quotedText(text)));
        return value;
    }

    bool refuse(std::string reason) {
        skip(std::move(reason));
        return false;
    }

    void skip(std::string reason) {
        if (result_.skipped.size() == maximumSkippedLines)
            throw InterchangeError(line_, fmt::format("this is not an equalizer: more than {} "
                                                      "lines are not understood",
                                                      maximumSkippedLines));
        result_.skipped.push_back({line_, std::move(reason)});
    }

    void limit(std::size_t line, const std::string &value, double lowest, double highest,
               const char *unit) {
        result_.limited.push_back(
            {line, fmt::format("{} is beyond what is played, {:.4g} to {:.4g}{}", value, lowest,
                               highest, unit)});
    }

    std::vector<NumberedLine> lines_;
    DecimalMark fileMark_;
    EqualizerText result_;
    std::size_t line_ = 0;
    double preampDB_ = 0.0;
    std::size_t preampLine_ = 0; ///< last preamp line; 0 for none
    bool everyChannel_ = true;
};

} // namespace

EqualizerText readEqualizerText(std::string_view bytes) {
    if (bytes.size() > maximumEqualizerTextBytes)
        throw InterchangeError(0, "the text is larger than 1 MiB");
    return TextReader(utf8FromText(bytes)).read();
}

} // namespace quorbel
