// Puts the blocks of a description together to one tree.
#include "toolkit/dialog_description.h"

#include <map>
#include <set>
#include <utility>

#include "toolkit/resource_block.h"

namespace host_reference {

namespace {

using Blocks = std::map<std::string, ResourceBlock, std::less<>>;

Placement PlacementOf(const ResourceAttributes& attributes) {
    return {.left = {attributes.attachLeft, attributes.leftOffset},
            .right = {attributes.attachRight, attributes.rightOffset},
            .top = {attributes.attachTop, attributes.topOffset},
            .bottom = {attributes.attachBottom, attributes.bottomOffset}};
}

constexpr Placement kEverywhere = {
    .left = {true, 0}, .right = {true, 0}, .top = {true, 0}, .bottom = {true, 0}};

constexpr int kDepthOfDialog = 1;

class Composer {
  public:
    explicit Composer(const Blocks& layouts) : layouts_(layouts) {}

    Element Compose(const ResourceBlock& block, const Placement& placement, int depth) {
        if (depth > kDeepestLayout) {
            throw DescriptionError(block.line, "layouts are nested too deeply");
        }
        Element element;
        element.placement = placement;
        element.rows = block.rows;
        element.columns = block.columns;
        for (const std::size_t cell : block.cells) {
            element.children.push_back(ComposeComponent(block.components[cell], depth));
        }
        return element;
    }

    std::vector<WindowDescription> TakeWindows() { return std::move(windows_); }

  private:
    /// Components are asked for by name on their device: a second one of a name could not be reached. That also keeps the
    /// tree from growing beyond the description, and a layout out of itself.
    Element ComposeComponent(const ResourceComponent& component, int depth) {
        if (!names_.insert(component.name).second) {
            const bool layout = component.type == ResourceType::SubLayout;
            throw DescriptionError(component.line, (layout ? "layout " : "component ") +
                                                       Quoted(component.name) + " is used twice");
        }
        if (component.type == ResourceType::SubLayout) {
            const ResourceBlock& layout = layouts_.find(component.name)->second;
            return Compose(layout, PlacementOf(layout.attributes), depth + 1);
        }
        Element element;
        element.placement = PlacementOf(component.attributes);
        element.window = windows_.size();
        windows_.push_back({component.name, component.attributes.keyboardInput});
        return element;
    }

    const Blocks& layouts_;
    std::set<std::string_view> names_;
    std::vector<WindowDescription> windows_;
};

void CheckSubLayouts(const Blocks& blocks, const Blocks& layouts) {
    for (const auto& [name, block] : blocks) {
        for (const ResourceComponent& component : block.components) {
            if (component.type == ResourceType::SubLayout && !layouts.contains(component.name)) {
                throw DescriptionError(component.line, "there is no layout " + Quoted(component.name));
            }
        }
    }
}

/// Also what is not part of the dialog that was asked for: none of it uses a name twice or goes too deep.
void CheckComposition(const Blocks& dialogs, const Blocks& layouts) {
    for (const auto& [name, block] : dialogs) {
        Composer(layouts).Compose(block, kEverywhere, kDepthOfDialog);
    }
    for (const auto& [name, block] : layouts) {
        Composer(layouts).Compose(block, kEverywhere, kDepthOfDialog + 1);
    }
}

void AddBlock(Blocks& blocks, ResourceBlock block) {
    const int line = block.line;
    const std::string name = block.name;
    if (!blocks.emplace(name, std::move(block)).second) {
        throw DescriptionError(line, "there are two blocks of the name " + Quoted(name));
    }
}

} // namespace

DialogDescription ReadDialog(std::string_view description, std::string_view dialog) {
    const ResourceNode tree = ParseResource(description);
    Blocks dialogs;
    Blocks layouts;
    for (const ResourceNode& node : tree.children) {
        ResourceBlock block = ReadBlock(node);
        AddBlock(block.type == ResourceType::Dialog ? dialogs : layouts, std::move(block));
    }
    CheckSubLayouts(dialogs, layouts);
    CheckSubLayouts(layouts, layouts);
    const auto found = dialogs.find(dialog);
    if (found == dialogs.end()) {
        throw DescriptionError(tree.line, "there is no dialog " + Quoted(dialog));
    }
    const ResourceAttributes& attributes = found->second.attributes;
    Composer composer(layouts);
    Element page = composer.Compose(found->second, kEverywhere, kDepthOfDialog);
    CheckComposition(dialogs, layouts);
    return {.bitmap = attributes.bitmap,
            .titleBarImage = attributes.titleBarImage,
            .alwaysOnTop = attributes.alwaysOnTop,
            .systemMenuButton = attributes.systemMenuButton,
            .closeButton = attributes.closeButton,
            .page = std::move(page),
            .windows = composer.TakeWindows()};
}

} // namespace host_reference
