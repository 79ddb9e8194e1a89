// One block of a description, (Dialog ...) or (Layout ...), checked by itself: its components, their attributes, its grid.
// What its components refer to outside the block is left to others.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/resource_syntax.h"

namespace host_reference {

/// What has attributes. Each is a bit, so that a table of attributes can name several.
enum class ResourceType : unsigned { Dialog = 1, Layout = 2, SubLayout = 4, NakedWindow = 8 };

/// All attributes that there are; which of them a thing can have depends on its type.
struct ResourceAttributes {
    bool attachLeft = false;
    bool attachRight = false;
    bool attachTop = false;
    bool attachBottom = false;
    int leftOffset = 0;
    int rightOffset = 0;
    int topOffset = 0;
    int bottomOffset = 0;
    bool keyboardInput = false;
    bool alwaysOnTop = false;
    bool systemMenuButton = false;
    bool closeButton = false;
    std::string bitmap;
    std::string titleBarImage;

    unsigned given = 0; ///< A bit for each attribute that the description has set.
};

/// The value of a node that sets `attribute` of a thing. The attribute is named in the node without the thing's name.
/// @throws DescriptionError for an attribute that such a thing has not, or has already, and for a value of a wrong type.
void SetResourceAttribute(ResourceAttributes& attributes, ResourceType type, std::string_view attribute,
                          const ResourceNode& value);

struct ResourceComponent {
    ResourceType type = ResourceType::NakedWindow;
    std::string name;
    int line = 1;
    bool placed = false; ///< A cell of the grid names it.
    ResourceAttributes attributes;
};

struct ResourceBlock {
    ResourceType type = ResourceType::Dialog;
    std::string name;
    int line = 1;
    ResourceAttributes attributes;
    std::vector<ResourceComponent> components;
    std::map<std::string, std::size_t, std::less<>> componentsByName;
    int rows = 0;
    int columns = 0;
    std::vector<std::size_t> cells; ///< Indices of components.
};

/// @throws DescriptionError
ResourceBlock ReadBlock(const ResourceNode& node);

} // namespace host_reference
