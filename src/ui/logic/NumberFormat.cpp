#include "ui/logic/NumberFormat.h"

#include <fmt/format.h>

#include <cmath>

namespace quorbel {

namespace {

/// Returns `value`, or 0 if it rounds to zero at `decimals` digits.
double withoutMinusZero(double value, int decimals) {
    return std::abs(value) * std::pow(10.0, decimals) <= 0.5 ? 0.0 : value;
}

bool isWhole(double value) { return std::floor(value) == value; }

} // namespace

std::string fixedText(double value, int decimals) {
    if (std::isnan(value))
        return "–";
    return fmt::format("{:.{}f}", withoutMinusZero(value, decimals), decimals);
}

std::string signedText(double value, int decimals) {
    if (std::isnan(value))
        return "–";
    return fmt::format("{:+.{}f}", withoutMinusZero(value, decimals), decimals);
}

std::string gainText(double dB) { return signedText(dB, 1) + " dB"; }

std::string valueText(double value, const SettingScale &scale) {
    const int decimals = scale.step < 1.0F ? 1 : 0;
    switch (scale.unit) {
    case SettingUnit::none:
        return fixedText(value, decimals);
    case SettingUnit::percent:
        return fixedText(value, decimals) + " %";
    case SettingUnit::hertz:
        return fixedText(value, decimals) + " Hz";
    case SettingUnit::decibels:
        return fixedText(value, decimals) + " dB";
    case SettingUnit::gain:
        return signedText(value, decimals) + " dB";
    case SettingUnit::decibelsFullScale:
        return fixedText(value, decimals) + " dBFS";
    }
    return {};
}

std::string frequencyText(double hertz) {
    return fixedText(hertz, hertz >= 1000.0 || isWhole(hertz) ? 0 : 1) + " Hz";
}

std::string frequencyLabel(float hertz) {
    const double value = static_cast<double>(hertz);
    if (value < 1000.0 || std::isnan(value))
        return fixedText(value, isWhole(value) ? 0 : 1);
    const double thousands = value / 1000.0;
    return fixedText(thousands, isWhole(thousands) ? 0 : 1) + "k";
}

} // namespace quorbel
