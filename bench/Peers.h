#ifndef NYXCONFIG_PEERS_H
#define NYXCONFIG_PEERS_H

// The general XML libraries, each used as its own documentation suggests for speed.

#include "Files.h"
#include "Model.h"

#include <string>
#include <vector>

namespace bench
{

struct Peer
{
    const char* name;
    void (*load)(const std::string& file, Footprint& footprint);       ///< null for a library that only writes
    void (*save)(const Footprint& footprint, const std::string& file); ///< null for a library that only reads
};

extern const Peer Rapidxml;
extern const Peer Pugixml;
extern const Peer Tinyxml2;
extern const Peer Libxml2;
extern const Peer Expat;
extern const Peer Qt;
/// No library at all: one function that writes into a buffer.
extern const Peer ByHand;

const std::vector<const Peer*>& Peers();
/// @throw std::runtime_error for an unknown name.
const Peer& PeerByName(const std::string& name);

} // namespace bench

#endif
