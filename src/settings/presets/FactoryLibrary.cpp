#include "settings/presets/FactoryPresets.h"

#include <map>

namespace quorbel {

namespace {

/// Builds a SpatialConfig from the defaults; each call switches its stage on.
class Spatial {
  public:
    Spatial &widener(float percent) {
        config_.widenerEnabled = true;
        config_.widthPercent = percent;
        return *this;
    }
    Spatial &xtc(float amount, float notchHz) {
        config_.xtcEnabled = true;
        config_.xtcAmount = amount;
        config_.xtcNotchFrequency = notchHz;
        return *this;
    }
    Spatial &reverb(SpatialConfig::ReverbPreset room, float mix) {
        config_.reverbEnabled = true;
        config_.reverbPreset = room;
        config_.reverbMix = mix;
        return *this;
    }
    Spatial &bass(float amount, float drive, float crossoverHz, bool adaptive) {
        config_.bassEnabled = true;
        config_.bassAmount = amount;
        config_.bassDrive = drive;
        config_.bassCrossover = crossoverHz;
        config_.bassAdaptiveEnabled = adaptive;
        return *this;
    }
    Spatial &voice(float amount, float presenceDB, float mudCutDB, bool adaptive) {
        config_.voiceEnabled = true;
        config_.voiceAmount = amount;
        config_.voicePresenceGainDB = presenceDB;
        config_.voiceMudCutDB = mudCutDB;
        config_.voiceAdaptiveEnabled = adaptive;
        return *this;
    }

    operator SpatialConfig() const { return config_; } // NOLINT(*-explicit-constructor)

  private:
    SpatialConfig config_;
};

struct Definition {
    const char *name;
    Preset::Category category;
    std::vector<float>
        gains; ///< dB at 31.5, 63, 125, 250, 500, 1k, 2k, 4k, 8k, 16k Hz; none: the default bands
    std::map<std::size_t, float> qOverrides; ///< by band index
    SpatialConfig spatial;
    const char *notes;
};

std::vector<Definition> definitions() {
    using enum Preset::Category;
    using enum SpatialConfig::ReverbPreset;
    constexpr bool adaptive = true;
    constexpr bool steady = false;
    // clang-format off
    return {
        {"Flat", general, {}, {}, {},
         "No correction applied. Use as starting point or A/B reference."},
        {"MR5 Neutral", mr5, {0, 0, 0, 1, 0, -0.5, -3, -1.5, 0, 0}, {{6, 2}, {7, 1.5}}, {},
         "Compensates MR5's upper-mid emphasis at 2 kHz and small 4 kHz peak. Most transparent "
         "preset for speakers on stands."},
        {"MR5 Studio / Mixing", mr5, {0, 0, 0, 0, 0, 0, -3, -1, 0, 0}, {{6, 2}, {7, 1.5}}, {},
         "Analytical. Only tames known MR5 colorations — nothing else. Use for critical "
         "listening and mixing."},
        {"MR5 Deep Bass", mr5, {1, 2, 1, -0.5, 0, -0.5, -3, -1.5, 0, 0.5}, {{6, 2}, {7, 1.5}}, Spatial().bass(65, 3.5F, 75, adaptive),
         "Harmonic bass enhancer with adaptive crossover tracking. App detects the current "
         "song's bass fundamental in real-time and auto-tunes the enhancer to generate harmonics"
         " exactly of that note. MR5 character corrections preserved."},
        {"MR5 Voice Clarity", mr5, {0, 0, 0, 0, 0, 0, -3, -1.5, 0, 0}, {{6, 2}, {7, 1.5}}, Spatial().voice(100, 3.5F, 2.5F, adaptive),
         "Adaptive presence boost + mud cut that engages only on vocal content (detected via "
         "spectral energy ratio). Perfect for dialogue-heavy content: films, podcasts, YouTube. "
         "Instrumental music plays back transparently."},
        {"MR5 Desk (Near-field)", mr5Desk, {0, -1.5, -2.5, 1, 0, -0.5, -3, -1, 0.5, 1}, {{2, 1.5}, {6, 2}, {7, 1.5}}, {},
         "For MR5 on a work desk at ~1 m. Tames desk boundary bloom at 125 Hz, compensates for "
         "desk-surface absorption in treble, plus MR5 character correction."},
        {"MR5 Desk + Wall Close", mr5Desk, {-2, -3, -3.5, 1, 0, -0.5, -3, -1, 0.5, 1}, {{2, 1.5}, {6, 2}, {7, 1.5}}, {},
         "MR5 on desk with rear port within 20 cm of a wall. Heavier bass cut to compensate "
         "boundary loading + port bloom."},
        {"MR5 Desk — Late Night", mr5Desk, {4, 3, -1, 1, 0, 0, -2, 0, 2, 4}, {{6, 2}}, Spatial().widener(110),
         "Low-volume compensation (Fletcher-Munson): boosts bass and treble so quiet playback "
         "still sounds balanced. Ideal for late-night listening without disturbing others."},
        {"MR5 Deep Bass (Desk)", mr5Desk, {0, -1, -2.5, 0.5, 0, -0.5, -3, -1, 0.5, 1}, {{2, 1.5}, {6, 2}, {7, 1.5}}, Spatial().widener(115).bass(75, 4, 70, adaptive),
         "Strong psychoacoustic bass with adaptive fundamental tracking. Cut 125Hz desk bloom so"
         " the enhancer's harmonics come through cleanly. Best preset for bass-forward music on "
         "work desk."},
        {"Bass Heavy", bass, {5, 4, 2, 0, -0.5, 0, -0.5, 0, 0.5, 0.5}, {{0, 0.8}, {1, 1}}, Spatial().bass(60, 3.5F, 75, adaptive),
         "Generic bass boost — adds weight across 30-150 Hz with mild treble lift to keep "
         "balance. Adaptive harmonic enhancer adds perceptual sub-bass that small speakers can't"
         " reproduce. Works for everything from pop to rock to hip-hop."},
        {"Bass Punchy", bass, {0, 4, 3, 0, -0.5, 0, -0.5, 0, 0.5, 0.5}, {{1, 1.5}, {2, 1.5}}, Spatial().bass(50, 4, 90, steady),
         "Tight kick-drum focus — peaks at 63-125 Hz where snare/kick body sits, no sub-bass "
         "mud. Bass enhancer in static mode preserves transient attack. Best for rock, funk, "
         "electronic with prominent drums."},
        {"Bass Sub Deep", bass, {6, 4, 1, -1, -1, 0, 0, 0, 0, 1}, {{0, 0.7}}, Spatial().bass(80, 4.5F, 65, adaptive),
         "Maximum sub-bass weight for EDM, trap, dubstep, 808-heavy hip-hop. Heavy boost at "
         "31-63 Hz with slight upper-mid scoop to make the bass feel even bigger. Adaptive "
         "harmonic enhancer at 80% generates strong sub-bass perception. Easy on small speakers "
         "— generates phantom sub instead of demanding it physically."},
        {"Bass Warm Body", bass, {1, 2, 3, 2, 0, -0.5, -1, 0, 0, 0}, {{2, 1}, {3, 1}}, Spatial().bass(40, 3, 100, adaptive),
         "Subtle body and warmth in the 100-250 Hz region — where upright bass, cello, baritone "
         "vocals and guitar fundamentals live. Doesn't push sub-bass, just makes everything "
         "sound 'fuller'. Best for acoustic music, jazz, classical, singer-songwriter material."},
        {"Apple AirPods 4", headphones, {1, 1, 0, 0, 0, 0, -2, -1.5, 0, 0}, {{6, 1.5}, {7, 1.5}}, {},
         "Compensates AirPods 4 mild upper-mid emphasis (2 kHz peak) and partial low-end "
         "roll-off. Pair with iOS Headphone Accommodations for personalised fit correction."},
        {"Apple AirPods Pro 2", headphones, {0, -1, -1, 0, 0, 0.5, 0, -2, -1, 0}, {{7, 1.5}}, {},
         "Tames the slight bass bloom and 4 kHz peak. AirPods Pro 2 are already very neutral "
         "with adaptive EQ — corrections are minimal."},
        {"Apple AirPods Max", headphones, {0, 0, 0, 0, 0, 0, 0, -0.5, 0, 0}, {}, {},
         "AirPods Max measure very close to Harman target out of the box. Only a tiny 4 kHz "
         "softening — leave Flat if you prefer Apple's tuning."},
        {"Sony WH-1000XM5", headphones, {-1.5, -2, -2, -1, 0, 2, 1.5, 0, -2, -1.5}, {{5, 1}, {6, 1.5}}, {},
         "Strongly V-shaped from factory. This preset cuts the bass boost (-2 dB), restores "
         "recessed mids (+2 dB at 1 kHz) and tames the sparkly 8 kHz peak. More accurate, less "
         "consumer-pleasing."},
        {"Bose QuietComfort Ultra", headphones, {-0.5, -1, -1, 0, 0, 0.5, 0.5, 0, 0, 0}, {}, {},
         "Already balanced; this preset just trims the slight bass bloom and lifts presence by a"
         " hair. Safe on most content."},
        {"Sennheiser HD 600", headphones, {2, 2, 1, 0.5, 0, -0.5, -0.5, 0, 0.5, 1}, {{9, 0.7}}, {},
         "Adds the bass and air the HD 600 is famous for missing. Mids and treble already "
         "excellent — leave alone. Reference of choice for many audiophiles after this "
         "correction."},
        {"Beyerdynamic DT 770 PRO", headphones, {-1.5, -2, -1, 0, 0.5, 1, 0, 0, -3, -1}, {{8, 3}}, {},
         "Tames the well-known piercing 8 kHz peak (narrow Q=3) that fatigues ears on "
         "percussion. Also softens the boomy bass. Calibrated for 250Ω version — 80Ω is close "
         "enough."},
        {"Audio-Technica ATH-M50x", headphones, {-1.5, -1.5, -1, 0.5, 1.5, 1.5, 0, -0.5, -1.5, 0}, {{4, 1}, {5, 1}}, {},
         "M50x ships with bass and 6 kHz both boosted — common for tracking but tiring for "
         "casual listening. This preset restores midrange and reduces fatigue."},
        {"Skullcandy Crusher Evo", headphones, {-5, -4, -3, -1, 1, 2, 2, 1, 1.5, 2}, {{4, 1}, {5, 1.5}, {6, 1.5}}, {},
         "Aggressive correction — Crusher's haptic motors plus consumer V-shape produce 10+ dB "
         "of bass boost. This preset cuts hard at 31-125 Hz and lifts mids/treble to find the "
         "music underneath. Set the haptic bass slider on the headphone to MINIMUM for this "
         "preset to make sense."},
        {"Beats Studio Pro", headphones, {-1, -2, -1.5, 0, 1, 1, 0, 0, -1, 0}, {}, {},
         "Modern Beats are much more balanced than the old days, but still have a consumer "
         "V-shape. This preset cuts low-bass bloom and restores mid presence."},
        {"JBL Go 3 — Neutral", btSpeakers, {0, 0, 0, -2, 1, 0, -2.5, -1, -1, 1}, {{3, 1.5}, {6, 2}}, Spatial().bass(30, 3, 90, adaptive),
         "Aggressive correction toward Harman target. Tames JBL's bass bloom (-2 dB at 250 Hz) "
         "and 2 kHz honk peak. Bass enhancer adds psychoacoustic depth above the 100 Hz physical"
         " cutoff. Most 'accurate' preset — sounds flat compared to JBL default."},
        {"JBL Go 3 — Music", btSpeakers, {0, 0, 0, -1, 0, 0, -1.5, -0.5, 0, 0.5}, {{6, 2}}, Spatial().bass(50, 3.5F, 100, adaptive),
         "Balanced correction — keeps the JBL Pro Sound character but takes the edge off the 2 "
         "kHz peak and tightens the bass bloom. Best general-purpose preset for music on Go 3."},
        {"JBL Go 3 — Outdoor Loud", btSpeakers, {0, 0, -1, 0, 1, 1.5, -1, 0, 0.5, 0}, {{4, 1}, {5, 1}}, Spatial().bass(40, 3, 100, steady),
         "Optimized for high-volume outdoor playback. Boosts mids (500 Hz-1 kHz) so music cuts "
         "through ambient noise. Slight cut at 125 Hz to give the limiter more headroom. Bass "
         "enhancer in static mode for predictable behavior."},
        {"JBL Go 3 — Vocal / Podcast", btSpeakers, {-2, -2, -1.5, -0.5, 1.5, 2, -1, 1, 0, 0}, {{4, 1.2}, {5, 1.5}, {6, 2}}, Spatial().voice(70, 3, 2.5F, steady),
         "Speech-focused tuning for podcasts, audiobooks, dialogue. Aggressive bass cut frees up"
         " the small driver to deliver clear mids. Voice clarity enhancer adds presence and "
         "removes mud. Best for spoken word on portable Go 3."},
        {"Music (Relaxed)", genre, {2, 1, 0, 0, 0, 0, -2, -1, 1, 2}, {{6, 2}}, Spatial().widener(115).reverb(smallRoom, 8),
         "Gentle smile curve with MR5 corrections. Pleasant for general music listening. Subtle "
         "widening and ambience."},
        {"Cinema / Film", genre, {3, 2, 1, -1, -1, 0, -2, -0.5, 1, 1.5}, {{6, 2}}, Spatial().widener(140).xtc(65, 2200).reverb(mediumHall, 18),
         "Big low-end for explosions, slight mid dip for dialogue. XTC shuffler widens "
         "soundstage for immersive viewing."},
        {"Vocal / Podcast", genre, {-2, -1, -1, 0, 1, 1.5, -1, 1, 0, 0}, {{5, 1.2}, {6, 2}}, {},
         "Cuts low-end mud, emphasises presence (500 Hz-1.5 kHz), slight sibilance-area lift for"
         " clarity. Good for speech content."},
        {"Electronic / Bass", genre, {4, 3, 1, -1, 0, 0, -2, -0.5, 1, 2.5}, {{6, 2}}, Spatial().widener(130).bass(60, 3.5F, 70, steady),
         "Heavy low-end for EDM/trap/hip-hop. Harmonic bass enhancer ON to recover sub-bass MR5 "
         "can't physically reach. Widening at 130%."},
        {"Acoustic / Jazz", genre, {0, 0, 0.5, 0.5, 0, -0.5, -2.5, -1, 0.5, 1.5}, {{6, 2}, {7, 1.5}}, {},
         "Warm, natural tonality for unplugged recordings. Gentle body boost, MR5 character "
         "tamed, subtle air for cymbals and reverb tails."},
        {"Warm / Long Session", genre, {1.5, 1, 1, 0.5, 0, 0, -2, -2, -1, -1}, {{6, 2}}, {},
         "Relaxed top end to reduce ear fatigue during long listening sessions. Slight warmth in"
         " lows."},
    };
    // clang-format on
}

} // namespace

std::vector<Preset> factoryLibrary() {
    std::vector<Preset> presets;
    for (const Definition &definition : definitions())
        presets.push_back({.name = definition.name,
                           .category = definition.category,
                           .bands = definition.gains.empty()
                                        ? EQBand::defaultBands()
                                        : bands(definition.gains, definition.qOverrides),
                           .spatial = definition.spatial,
                           .notes = definition.notes});
    return presets;
}

} // namespace quorbel
