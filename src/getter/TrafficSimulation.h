// Simulation and recording of the traffic with a server, for tests of a client. A prefix before
// the URL asks for them: "SIM:" has the request answered by a rule instead of the server, "SAVE:"
// records the request and its page, "SIM:SAVE:" does both. The files are in c:\HttpGet_Simulate.
#pragma once

#include "backends/TrafficHooks.h"

// The process's own; any thread.
TrafficHooks& TrafficSimulation();
