// One direction at a time: left and right are to columns what top and bottom are to rows.
#include "toolkit/arrangement.h"

#include <algorithm>
#include <cstddef>

namespace host_reference {

namespace {

enum class Direction { Horizontal, Vertical };

const Side& NearSide(const Element& element, Direction direction) {
    return direction == Direction::Horizontal ? element.placement.left : element.placement.top;
}

const Side& FarSide(const Element& element, Direction direction) {
    return direction == Direction::Horizontal ? element.placement.right : element.placement.bottom;
}

int DistanceTo(const Side& side) {
    return side.attached ? side.offset : 0;
}

// Attributes come from a text: many large offsets, one inside the other, must not leave the range of a number.
int Bounded(int extent) {
    return std::clamp(extent, 0, kLargestNumber);
}

int NaturalExtentOf(const Element& element, Direction direction) {
    if (element.rows == 0) {
        return kNaturalExtent;
    }
    int largest = 0;
    for (const Element& child : element.children) {
        largest =
            std::max(largest, NaturalExtentOf(child, direction) + DistanceTo(NearSide(child, direction)) +
                                  DistanceTo(FarSide(child, direction)));
    }
    return Bounded(Bounded(largest) * (direction == Direction::Horizontal ? element.columns : element.rows));
}

Span Place(const Element& element, Direction direction, Span cell) {
    const Side& nearSide = NearSide(element, direction);
    const Side& farSide = FarSide(element, direction);
    const int begin = cell.begin + DistanceTo(nearSide);
    const int end = cell.end - DistanceTo(farSide);
    if (nearSide.attached && farSide.attached) {
        return {begin, std::max(begin, end)};
    }
    const int extent = NaturalExtentOf(element, direction);
    return farSide.attached ? Span{end - extent, end} : Span{begin, begin + extent};
}

Span CellOf(Span whole, int index, int count) {
    const int extent = whole.end - whole.begin;
    return {whole.begin + extent * index / count, whole.begin + extent * (index + 1) / count};
}

void ArrangeElement(const Element& element, const Area& cell, std::vector<Area>& areas) {
    const Area area = {Place(element, Direction::Horizontal, cell.horizontal),
                       Place(element, Direction::Vertical, cell.vertical)};
    if (element.rows == 0) {
        areas[element.window] = area;
        return;
    }
    int index = 0;
    for (const Element& child : element.children) {
        ArrangeElement(child,
                       {CellOf(area.horizontal, index % element.columns, element.columns),
                        CellOf(area.vertical, index / element.columns, element.rows)},
                       areas);
        ++index;
    }
}

} // namespace

std::vector<Area> Arrange(const DialogDescription& description, int width, int height) {
    std::vector<Area> areas(description.windows.size());
    ArrangeElement(description.page, {{0, width}, {0, height}}, areas);
    return areas;
}

} // namespace host_reference
