#include "settings/records/json/SettingsCoding.h"

#include "settings/records/json/RecordDecoder.h"
#include "settings/records/json/RecordEncoder.h"

namespace quorbel {

template <class Record> Record decodeRecord(std::string_view json) {
    Record record;
    decode(parseJson(json), CodingPath(), record);
    return record;
}

template <class Record> std::string encodeRecord(const Record &record) {
    std::string json;
    encode(json, CodingPath(), record);
    return json;
}

template OutputChoice decodeRecord<OutputChoice>(std::string_view);
template OutputProfile decodeRecord<OutputProfile>(std::string_view);
template EQBand decodeRecord<EQBand>(std::string_view);
template MixerConfig decodeRecord<MixerConfig>(std::string_view);
template SpatialConfig decodeRecord<SpatialConfig>(std::string_view);
template Preset decodeRecord<Preset>(std::string_view);
template Persisted decodeRecord<Persisted>(std::string_view);
template ProgramRule decodeRecord<ProgramRule>(std::string_view);

template std::string encodeRecord(const ProgramRule &);
template std::string encodeRecord(const OutputChoice &);
template std::string encodeRecord(const OutputProfile &);
template std::string encodeRecord(const EQBand &);
template std::string encodeRecord(const MixerConfig &);
template std::string encodeRecord(const SpatialConfig &);
template std::string encodeRecord(const Preset &);
template std::string encodeRecord(const std::vector<Preset> &);
template std::string encodeRecord(const Persisted &);

} // namespace quorbel
