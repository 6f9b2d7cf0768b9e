#pragma once

#include "SimulatedServer.h"

#include <string>

namespace quorbel::desktop {

class Desktop;
class SimulatedClient;

/// True if the sound of node `from` reaches node `to`, through links and programs.
bool hears(const SimulatedServer &server, std::uint32_t from, std::uint32_t to);

/// Name of a stream that the client has sent to the tap although, in the client's view, it hears
/// the output; empty if there is none.
std::string fedBack(const SimulatedClient &client);

/// Name of the stream's target node in its metadata or properties; empty if there is none.
std::string chosenTarget(const SimulatedServer &server, const Node &node);

/// Fault of the desktop at rest, compared with one without us; empty if there is none.
std::string wrongWhenQuiet(const Desktop &desktop, const Desktop &without);

} // namespace quorbel::desktop
