#include "Peers.h"

namespace bench
{

const std::vector<const Peer*>& Peers()
{
    static const std::vector<const Peer*> all = {&Rapidxml, &Pugixml, &Tinyxml2, &Libxml2, &Expat, &Qt, &ByHand};
    return all;
}

const Peer& PeerByName(const std::string& name)
{
    for (const Peer* peer : Peers()) {
        if (name == peer->name) {
            return *peer;
        }
    }
    Fail("there is no peer " + name);
}

} // namespace bench
