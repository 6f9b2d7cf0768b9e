#include "platform/hardware/routing/ServerObjects.h"

#include <algorithm>

namespace quorbel {
namespace {

template <typename Record>
std::optional<Record> takeFrom(std::map<std::uint32_t, Record> &records, std::uint32_t id) {
    auto entry = records.extract(id);
    if (entry.empty())
        return std::nullopt;
    return std::move(entry.mapped());
}

template <typename Predicate>
const NodeRecord *findNode(const std::map<std::uint32_t, NodeRecord> &nodes, Predicate predicate) {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&](const auto &entry) { return predicate(entry.second); });
    return found == nodes.end() ? nullptr : &found->second;
}

} // namespace

const std::string &propertyValue(const PropertyMap &properties, std::string_view key) {
    static const std::string none;
    const auto found = properties.find(key);
    return found == properties.end() ? none : found->second;
}

const NodeRecord *ServerObjects::node(std::uint32_t id) const {
    const auto found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : &found->second;
}

const NodeRecord *ServerObjects::nodeNamed(std::string_view name) const {
    return findNode(nodes_, [&](const NodeRecord &node) { return node.name() == name; });
}

const NodeRecord *ServerObjects::nodeWithSerial(std::uint64_t serial) const {
    return findNode(nodes_, [&](const NodeRecord &node) { return node.serial == serial; });
}

const PropertyMap *ServerObjects::client(std::uint32_t id) const {
    const auto found = clients_.find(id);
    return found == clients_.end() ? nullptr : &found->second;
}

void ServerObjects::putClient(std::uint32_t id, PropertyMap properties) {
    clients_[id] = std::move(properties);
}

bool ServerObjects::takeClient(std::uint32_t id) { return clients_.erase(id) > 0; }

const PortRecord *ServerObjects::port(std::uint32_t id) const {
    const auto found = ports_.find(id);
    return found == ports_.end() ? nullptr : &found->second;
}

std::vector<PortRecord> ServerObjects::ports(std::uint32_t nodeID, bool input) const {
    std::vector<PortRecord> result;
    for (const auto &[_, port] : ports_)
        if (port.nodeID == nodeID && port.isInput == input)
            result.push_back(port);
    std::sort(result.begin(), result.end(),
              [](const PortRecord &a, const PortRecord &b) { return a.index < b.index; });
    return result;
}

bool ServerObjects::hasPorts(std::uint32_t nodeID, bool input) const {
    return std::any_of(ports_.begin(), ports_.end(), [&](const auto &entry) {
        return entry.second.nodeID == nodeID && entry.second.isInput == input;
    });
}

bool ServerObjects::isLinked(std::uint32_t outputNodeID, std::uint32_t inputNodeID) const {
    return std::any_of(links_.begin(), links_.end(), [&](const auto &entry) {
        return entry.second.outputNodeID == outputNodeID && entry.second.inputNodeID == inputNodeID;
    });
}

std::optional<MetadataValue> ServerObjects::metadata(std::uint32_t subject,
                                                     std::string_view key) const {
    const auto table = metadata_.find(subject);
    if (table == metadata_.end())
        return std::nullopt;
    const auto found = table->second.find(key);
    if (found == table->second.end())
        return std::nullopt;
    return found->second;
}

std::vector<std::uint32_t> ServerObjects::metadataSubjects() const {
    std::vector<std::uint32_t> subjects;
    for (const auto &[subject, _] : metadata_)
        subjects.push_back(subject);
    return subjects;
}

NodeRecord &ServerObjects::putNode(NodeRecord node) {
    const std::uint32_t id = node.id;
    return nodes_.insert_or_assign(id, std::move(node)).first->second;
}

std::optional<NodeRecord> ServerObjects::takeNode(std::uint32_t id) { return takeFrom(nodes_, id); }

void ServerObjects::putPort(PortRecord port) {
    const std::uint32_t id = port.id;
    ports_.insert_or_assign(id, std::move(port));
}

std::optional<PortRecord> ServerObjects::takePort(std::uint32_t id) { return takeFrom(ports_, id); }

void ServerObjects::putLink(const LinkRecord &link) { links_.insert_or_assign(link.id, link); }

std::optional<LinkRecord> ServerObjects::takeLink(std::uint32_t id) { return takeFrom(links_, id); }

void ServerObjects::putMetadata(std::uint32_t subject, std::string_view key,
                                const std::optional<MetadataValue> &value) {
    if (value) {
        metadata_[subject].insert_or_assign(std::string(key), *value);
        return;
    }
    const auto table = metadata_.find(subject);
    if (table == metadata_.end())
        return;
    if (const auto found = table->second.find(key); found != table->second.end())
        table->second.erase(found);
    if (table->second.empty())
        metadata_.erase(table);
}

} // namespace quorbel
