#pragma once

#include "exchange/exchange_file.h"
#include "prepare/placement/transform.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick::prepare {

// What one unit of each kind is in a context, in millimetres and radians.
struct ContextUnits {
    double length = 1;
    double angle = 1;
};

// The nodes of a file, each read when an element first asks for it.
class ElementNodes {
public:
    static constexpr std::uint32_t kAbsent = std::numeric_limits<std::uint32_t>::max();

    // The file must outlive it.
    explicit ElementNodes(const ExchangeFile& file);

    // The number, from 0, of the node that is this instance; kAbsent for a dummy node and for what can't be
    // read.
    std::uint32_t NumberOf(std::uint64_t instance);
    // In millimetres, by number.
    const std::vector<Vec3>& Positions() const { return positions_; }
    // Millimetres of the length unit of a node's context.
    double UnitOf(std::uint32_t node) const { return units_[node]; }

private:
    enum class SystemKind : std::uint8_t { kCartesian, kCylindrical, kSpherical };
    struct System {
        Transform at; // in millimetres
        SystemKind kind = SystemKind::kCartesian;
    };
    static constexpr std::uint32_t kUnread = kAbsent - 1;

    std::size_t PlaceOf(std::uint64_t instance) const;
    void ReadSystems();
    void ReadPointRepresentation(const Instance& representation);
    std::optional<System> ReadSystem(const Instance& instance, double unit) const;
    std::optional<Vec3> VectorOf(std::uint64_t instance) const;
    std::optional<Vec3> ReadPoint(std::uint64_t instance, const System& system,
                                  const ContextUnits& units) const;
    std::uint32_t Read(const Instance& instance, std::size_t place);
    const ContextUnits& UnitsOf(std::uint64_t context);

    const ExchangeFile& file_;
    std::vector<std::uint32_t> numbers_;  // of the instance at a place, or kUnread or kAbsent
    std::vector<std::uint32_t> systemOf_; // of the instance at a place, in the systems; empty without any
    std::vector<System> systems_;         // the first is that of the whole
    std::vector<Vec3> positions_;
    std::vector<double> units_;
    std::unordered_map<std::uint64_t, ContextUnits> unitsOf_;
};

} // namespace tarnwick::prepare
