// Reads a block's two sections; the order in which they stand does not matter.
#include "toolkit/resource_block.h"

#include <utility>

#include "toolkit/dialog_description.h"

namespace host_reference {

namespace {

using Kind = ResourceNode::Kind;

bool IsName(const ResourceNode& node) {
    return node.kind == Kind::Name;
}

/// The word that a list begins with, or an empty text.
std::string_view HeadOf(const ResourceNode& node) {
    return !node.children.empty() && IsName(node.children[0]) ? std::string_view(node.children[0].text)
                                                              : std::string_view();
}

/// A name that is given to something; dots stand between such names and attributes.
const std::string& GivenName(const ResourceNode& node) {
    if (!IsName(node) || node.text.find('.') != std::string::npos) {
        throw DescriptionError(node.line, "a name without dots expected");
    }
    return node.text;
}

ResourceType BlockType(const ResourceNode& node) {
    const std::string_view head = HeadOf(node);
    if (head != "Dialog" && head != "Layout") {
        throw DescriptionError(node.line, "(Dialog ...) or (Layout ...) expected");
    }
    return head == "Dialog" ? ResourceType::Dialog : ResourceType::Layout;
}

ResourceType ComponentType(const ResourceNode& node) {
    if (node.text == "NakedWindow") {
        return ResourceType::NakedWindow;
    }
    if (node.text == "SubLayout") {
        return ResourceType::SubLayout;
    }
    throw DescriptionError(node.line, "unknown component type " + Quoted(node.text));
}

void ReadComponent(ResourceBlock& block, const ResourceNode& node) {
    if (node.children.size() != 2 || !IsName(node.children[0])) {
        throw DescriptionError(node.line, "a component is given as (TYPE NAME)");
    }
    ResourceComponent component;
    component.type = ComponentType(node.children[0]);
    component.name = GivenName(node.children[1]);
    component.line = node.line;
    if (!block.componentsByName.emplace(component.name, block.components.size()).second) {
        throw DescriptionError(node.line, "there are two components " + Quoted(component.name));
    }
    block.components.push_back(std::move(component));
}

int ReadCount(const ResourceNode& grid, std::size_t index, std::string_view word) {
    const ResourceNode* const node = index < grid.children.size() ? &grid.children[index] : nullptr;
    if (node == nullptr || HeadOf(*node) != word || node->children.size() != 2 ||
        node->children[1].kind != Kind::Number) {
        throw DescriptionError(node != nullptr ? node->line : grid.line,
                               "(" + std::string(word) + " NUMBER) expected");
    }
    const int count = node->children[1].number;
    if (count < 1 || count > kMostRowsOrColumns) {
        throw DescriptionError(node->line, std::string(word) + " is out of range");
    }
    return count;
}

void ReadCell(ResourceBlock& block, const ResourceNode& cell) {
    const auto found = IsName(cell) ? block.componentsByName.find(cell.text) : block.componentsByName.end();
    if (found == block.componentsByName.end()) {
        throw DescriptionError(cell.line, "a cell names no component: " + Quoted(cell.text));
    }
    ResourceComponent& component = block.components[found->second];
    if (component.placed) {
        throw DescriptionError(cell.line, "component " + Quoted(cell.text) + " is in two cells");
    }
    component.placed = true;
    block.cells.push_back(found->second);
}

void ReadGrid(ResourceBlock& block, const ResourceNode& grid) {
    if (block.rows != 0) {
        throw DescriptionError(grid.line, "attribute \"Layout\" is given twice");
    }
    if (HeadOf(grid) != "Grid") {
        throw DescriptionError(grid.line, "(Grid ...) expected");
    }
    block.rows = ReadCount(grid, 1, "Rows");
    block.columns = ReadCount(grid, 2, "Cols");
    for (std::size_t i = 3; i < grid.children.size(); ++i) {
        ReadCell(block, grid.children[i]);
    }
    if (block.cells.size() > static_cast<std::size_t>(block.rows) * static_cast<std::size_t>(block.columns)) {
        throw DescriptionError(grid.line, "there are more components than cells");
    }
}

void ReadResource(ResourceBlock& block, const ResourceNode& node) {
    const std::string_view path = HeadOf(node);
    const std::size_t dot = path.find('.');
    if (node.children.size() != 2 || dot == std::string_view::npos) {
        throw DescriptionError(node.line, "a resource is given as (NAME.ATTRIBUTE VALUE)");
    }
    const std::string_view name = path.substr(0, dot);
    const std::string_view attribute = path.substr(dot + 1);
    const ResourceNode& value = node.children[1];
    if (!name.empty()) {
        const auto found = block.componentsByName.find(name);
        if (found == block.componentsByName.end()) {
            throw DescriptionError(node.line, "unknown component " + Quoted(name));
        }
        ResourceComponent& component = block.components[found->second];
        SetResourceAttribute(component.attributes, component.type, attribute, value);
    } else if (attribute == "Layout") {
        ReadGrid(block, value);
    } else {
        SetResourceAttribute(block.attributes, block.type, attribute, value);
    }
}

/// The one section of that name, or null.
const ResourceNode* FindSection(const ResourceNode& block, std::string_view name) {
    const ResourceNode* found = nullptr;
    for (std::size_t i = 2; i < block.children.size(); ++i) {
        const ResourceNode& section = block.children[i];
        const std::string_view head = HeadOf(section);
        if (head != "Components" && head != "Resources") {
            throw DescriptionError(section.line, "(Components ...) or (Resources ...) expected");
        }
        if (head == name && found != nullptr) {
            throw DescriptionError(section.line, "there are two sections " + Quoted(name));
        }
        found = head == name ? &section : found;
    }
    return found;
}

template <typename Reader>
void ReadSection(ResourceBlock& block, const ResourceNode& node, std::string_view name, Reader read) {
    const ResourceNode* const section = FindSection(node, name);
    for (std::size_t i = 1; section != nullptr && i < section->children.size(); ++i) {
        read(block, section->children[i]);
    }
}

void CheckAllIsPlaced(const ResourceBlock& block) {
    if (block.rows == 0) {
        throw DescriptionError(block.line, Quoted(block.name) + " has no layout");
    }
    for (const ResourceComponent& component : block.components) {
        if (!component.placed) {
            throw DescriptionError(component.line, "component " + Quoted(component.name) + " is in no cell");
        }
    }
}

} // namespace

ResourceBlock ReadBlock(const ResourceNode& node) {
    ResourceBlock block;
    block.type = BlockType(node);
    block.line = node.line;
    if (node.children.size() < 2) {
        throw DescriptionError(node.line, "a name without dots expected");
    }
    block.name = GivenName(node.children[1]);
    ReadSection(block, node, "Components", ReadComponent);
    ReadSection(block, node, "Resources", ReadResource);
    CheckAllIsPlaced(block);
    return block;
}

} // namespace host_reference
