#include "settings/state/ProfileDecision.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace quorbel::testing {
namespace {

using Bluetooth = OutputIdentity::Bluetooth;
using Use = OutputProfile::Use;

const std::string pci = "alsa_card.pci";
const std::string usb = "alsa_card.usb";
const std::string headset = "bluez_card.00_11";
const std::string speaker = "analog-output-speaker";
const std::string headphones = "analog-output-headphones";

// Keys
OutputKey onRoute(const std::string &card, const std::string &route) {
    return {.card = card, .route = route};
}
OutputKey onNode(const std::string &node) { return {.node = node}; }
OutputKey onCard(const std::string &card) { return {.card = card}; }
OutputKey inMusic(const std::string &card) { return {.card = card, .bluetooth = Bluetooth::music}; }
OutputKey inCalls(const std::string &card) { return {.card = card, .bluetooth = Bluetooth::call}; }
const OutputKey anyOutput;

// Outputs
OutputIdentity sink(const std::string &node) { return {.node = node}; }
OutputIdentity output(const std::string &card, const std::string &route,
                      const std::string &node = "node") {
    return {.card = card, .node = node, .route = route};
}
OutputIdentity awaited(const std::string &card, const std::string &node = "node") {
    return {.card = card, .node = node, .isAwaited = true};
}
OutputIdentity bluetooth(const std::string &card, Bluetooth kind,
                         const std::string &node = "bluez_output.00_11.1") {
    return {.card = card, .node = node, .bluetooth = kind};
}

/// A profile whose label identifies it in the table.
OutputProfile profile(const std::string &label, const OutputKey &key, Use use = Use::preset) {
    return {.key = key, .label = label, .use = use};
}

struct Situation {
    std::string name;
    std::vector<OutputProfile> profiles;
    OutputIdentity output;
    std::string found; ///< label of the profile; "" for none
    std::string state; ///< "", "alone" or "awaited"
};

const std::vector<OutputProfile> full{
    profile("any", anyOutput),
    profile("card", onCard(pci)),
    profile("node", onNode("node")),
    profile("speaker", onRoute(pci, speaker)),
    profile("headphones", onRoute(pci, headphones)),
    profile("music", inMusic(headset)),
    profile("calls", inCalls(headset)),
};
const std::vector<OutputProfile> alone{
    profile("any", anyOutput, Use::leaveAlone),
    profile("speaker", onRoute(pci, speaker), Use::flat),
    profile("headphones", onRoute(pci, headphones), Use::leaveAlone),
};
const std::vector<OutputProfile> coarse{profile("any", anyOutput), profile("card", onCard(pci)),
                                        profile("bluetooth card", onCard(headset))};
const std::vector<OutputProfile> lone{profile("headphones", onRoute(pci, headphones))};
const std::vector<OutputProfile> byNode{profile("old name", onNode("bluez_output.00_11.a2dp-sink")),
                                        profile("music", inMusic(headset))};
const std::vector<OutputProfile> nodeCall{profile("node", onNode("bluez_output.00_11.1")),
                                          profile("any", anyOutput)};

const std::vector<OutputProfile> twice{profile("first", onCard(pci)),
                                       profile("second", onCard(pci))};
const std::vector<OutputProfile> byRouteAndNode{
    profile("route", onRoute(pci, speaker)),
    profile("both", {.card = pci, .route = speaker, .node = "node"})};
const std::vector<OutputProfile> anyCard{profile("route", {.route = headphones})};
const OutputIdentity unknownHeadset{.node = "x", .bluetooth = Bluetooth::music, .isAwaited = true};

const std::vector<Situation> situations{
    // Most specific key first
    {"the route in use", full, output(pci, headphones), "headphones", ""},
    {"a third route of the card", full, output(pci, "hdmi-output-0"), "node", ""},
    {"a third route on another node", full, output(pci, "hdmi-output-0", "hdmi"), "card", ""},
    {"the same route name of another card", full, output(usb, headphones), "node", ""},
    {"the node without a card", full, sink("node"), "node", ""},
    {"a virtual sink", full, sink("null"), "any", ""},
    {"a card without routes", full, output(pci, "", "pro"), "card", ""},
    {"an output without any name", full, OutputIdentity{}, "any", ""},

    // No match
    {"no profiles", {}, output(pci, headphones), "", ""},
    {"no profiles, and a call", {}, bluetooth(headset, Bluetooth::call), "", ""},
    {"a profile for another route", lone, output(pci, speaker), "", ""},
    {"a name is no part of another", lone, output(pci, headphones + "2"), "", ""},
    {"an empty name fits nothing", {profile("empty", onCard(""))}, sink("node"), "", ""},

    // Bluetooth
    {"music on the headset", full, bluetooth(headset, Bluetooth::music), "music", ""},
    {"a call on the headset", full, bluetooth(headset, Bluetooth::call), "calls", ""},
    {"a call on another headset", full, bluetooth("bluez_card.22", Bluetooth::call), "", "alone"},
    {"the card alone is for music", coarse, bluetooth(headset, Bluetooth::music), "bluetooth card",
     ""},
    {"but not for calls", coarse, bluetooth(headset, Bluetooth::call), "", "alone"},
    {"nor is any other output", lone, bluetooth(headset, Bluetooth::call), "", "alone"},
    {"nor a profile of music", byNode, bluetooth(headset, Bluetooth::call), "", "alone"},
    {"a node named by the user is", nodeCall, bluetooth(headset, Bluetooth::call), "node", ""},
    {"the kind is worth more than the node", byNode,
     bluetooth(headset, Bluetooth::music, "bluez_output.00_11.a2dp-sink"), "music", ""},

    // Outputs left alone
    {"the headphones", alone, output(pci, headphones), "headphones", "alone"},
    {"and every other output", alone, sink("null"), "any", "alone"},

    // Route not known yet
    {"routes of the card have profiles", full, awaited(pci), "node", "awaited"},
    {"nothing else fits", lone, awaited(pci), "", "awaited"},
    {"it may be left alone", alone, awaited(pci), "any", "awaited"},
    {"only other cards have profiles", lone, awaited(usb), "", ""},
    {"the card's own profile is enough", coarse, awaited(pci), "card", ""},
    {"the card is not known either", lone, awaited(""), "", "awaited"},
    {"only nodes have profiles", {profile("node", onNode("node"))}, awaited(pci), "node", ""},
    {"a Bluetooth card is not known", byNode, unknownHeadset, "", "awaited"},

    // Hand-written files
    {"of two equal keys the first", twice, output(pci, speaker), "first", ""},
    {"all names of a key must fit", byRouteAndNode, output(pci, speaker, "other"), "route", ""},
    {"and then it is worth the most", byRouteAndNode, output(pci, speaker), "both", ""},
    {"a route of any card", anyCard, output(usb, headphones), "route", ""},
};

TEST(ProfileDecisionTest, DecidesEverySituation) {
    for (const Situation &situation : situations) {
        const ProfileDecision decision = decideProfile(situation.profiles, situation.output);
        EXPECT_EQ(decision.profile == nullptr ? "" : decision.profile->label, situation.found)
            << situation.name;
        // An awaited output is undecided: its route may have a profile that leaves it alone.
        if (situation.state != "awaited") {
            EXPECT_EQ(decision.isLeftAlone, situation.state == "alone") << situation.name;
        }
        EXPECT_EQ(decision.isAwaited, situation.state == "awaited") << situation.name;
    }
}

TEST(ProfileDecisionTest, TheOwnKeyOfAnOutputFitsItBeforeAnyOther) {
    for (const Situation &situation : situations) {
        if (situation.output.isAwaited || situation.output == OutputIdentity{})
            continue;
        const std::vector<OutputProfile> profiles{
            profile("card", onCard(situation.output.card)),
            profile("own", keyOf(situation.output)),
            profile("any", anyOutput),
        };
        const ProfileDecision decision = decideProfile(profiles, situation.output);
        ASSERT_NE(decision.profile, nullptr) << situation.name;
        EXPECT_EQ(decision.profile->label, "own") << situation.name;
    }
}

} // namespace
} // namespace quorbel::testing
