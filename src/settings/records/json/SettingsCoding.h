#pragma once

#include "platform/core/Programs.h"
#include "settings/records/OutputProfile.h"
#include "settings/records/Persisted.h"
#include "settings/records/json/CodingError.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// Reads a record from its JSON text. A missing or null optional key takes its default, unknown
/// keys are ignored; any other mismatch throws DecodingError. Instantiated for the records below.
template <class Record> [[nodiscard]] Record decodeRecord(std::string_view json);

/// Writes a record, or a list of presets, as compact JSON: keys in the order of the fields, floats
/// as the shortest decimal that reads back as the same value. Throws EncodingError for a value
/// that is not finite or not UTF-8.
template <class Record> [[nodiscard]] std::string encodeRecord(const Record &record);

extern template OutputChoice decodeRecord<OutputChoice>(std::string_view);
extern template OutputProfile decodeRecord<OutputProfile>(std::string_view);
extern template EQBand decodeRecord<EQBand>(std::string_view);
extern template MixerConfig decodeRecord<MixerConfig>(std::string_view);
extern template SpatialConfig decodeRecord<SpatialConfig>(std::string_view);
extern template Preset decodeRecord<Preset>(std::string_view);
extern template Persisted decodeRecord<Persisted>(std::string_view);
extern template ProgramRule decodeRecord<ProgramRule>(std::string_view);

extern template std::string encodeRecord(const ProgramRule &);
extern template std::string encodeRecord(const OutputChoice &);
extern template std::string encodeRecord(const OutputProfile &);
extern template std::string encodeRecord(const EQBand &);
extern template std::string encodeRecord(const MixerConfig &);
extern template std::string encodeRecord(const SpatialConfig &);
extern template std::string encodeRecord(const Preset &);
extern template std::string encodeRecord(const std::vector<Preset> &);
extern template std::string encodeRecord(const Persisted &);

} // namespace quorbel
