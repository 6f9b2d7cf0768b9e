#include "ui/logic/ProgramTexts.h"

namespace quorbel {

std::string treatmentText(StreamTreatment treatment) {
    switch (treatment) {
    case StreamTreatment::processed:
        return "Processed";
    case StreamTreatment::ready:
        return "Processed after Start";
    case StreamTreatment::pending:
        return "About to be processed";
    case StreamTreatment::excluded:
        return "Left alone: your choice";
    case StreamTreatment::unlisted:
        return "Left alone: not among the chosen programs";
    case StreamTreatment::call:
        return "Left alone: a call";
    case StreamTreatment::surround:
        return "Left alone: surround sound";
    case StreamTreatment::encoded:
        return "Left alone: compressed sound for the device";
    case StreamTreatment::moved:
        return "Left alone: moved by you";
    case StreamTreatment::unmovable:
        return "Left alone: it must not be moved";
    case StreamTreatment::copy:
        return "Left alone: it may carry the processed sound";
    case StreamTreatment::refused:
        return "Left alone: the sound server did not move it";
    }
    return {};
}

std::string programLabel(const ProgramNames &program) {
    for (const std::string *text :
         {&program.name, &program.binary, &program.applicationID, &program.sandbox})
        if (!text->empty())
            return *text;
    return "?";
}

} // namespace quorbel
