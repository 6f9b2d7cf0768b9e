#include "EverythingOn.h"

namespace quorbel::bench {

ChainSettings everythingOn() {
    ChainSettings settings;
    float gainDB = 3.0F;
    for (EQBand &band : settings.bands) {
        band.gainDB = gainDB;
        gainDB = -gainDB;
    }
    SpatialConfig &spatial = settings.spatial;
    spatial.widenerEnabled = spatial.xtcEnabled = spatial.reverbEnabled = true;
    spatial.bassEnabled = spatial.bassAdaptiveEnabled = true;
    spatial.voiceEnabled = spatial.voiceAdaptiveEnabled = true;
    spatial.widthPercent = 130.0F;
    spatial.reverbPreset = SpatialConfig::ReverbPreset::mediumHall;
    spatial.toneBassDB = 2.0F;
    spatial.toneMidDB = -1.0F;
    spatial.toneTrebleDB = 1.0F;
    MixerConfig &mixer = settings.mixer;
    mixer.saturationEnabled = mixer.crossfeedEnabled = true;
    mixer.autoGainEnabled = mixer.manualLoudnessEnabled = true;
    mixer.manualLoudnessDB = 1.0F;
    return settings;
}

} // namespace quorbel::bench
