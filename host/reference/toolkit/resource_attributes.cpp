// The attributes that there are, as a table: the type of the member is the type of the value.
#include <iterator>
#include <variant>

#include "toolkit/resource_block.h"

namespace host_reference {

namespace {

struct Attribute {
    std::string_view name;
    unsigned types; ///< Bits of ResourceType.
    std::variant<bool ResourceAttributes::*, int ResourceAttributes::*, std::string ResourceAttributes::*>
        member;
};

constexpr unsigned kOfDialog = static_cast<unsigned>(ResourceType::Dialog);
constexpr unsigned kOfWindow = static_cast<unsigned>(ResourceType::NakedWindow);
constexpr unsigned kOfPlaced = kOfWindow | static_cast<unsigned>(ResourceType::Layout);

constexpr Attribute kAttributes[] = {
    {"AttachLeft", kOfPlaced, &ResourceAttributes::attachLeft},
    {"AttachRight", kOfPlaced, &ResourceAttributes::attachRight},
    {"AttachTop", kOfPlaced, &ResourceAttributes::attachTop},
    {"AttachBottom", kOfPlaced, &ResourceAttributes::attachBottom},
    {"LeftOffset", kOfPlaced, &ResourceAttributes::leftOffset},
    {"RightOffset", kOfPlaced, &ResourceAttributes::rightOffset},
    {"TopOffset", kOfPlaced, &ResourceAttributes::topOffset},
    {"BottomOffset", kOfPlaced, &ResourceAttributes::bottomOffset},
    {"KeyboardInput", kOfWindow, &ResourceAttributes::keyboardInput},
    {"AlwaysOnTop", kOfDialog, &ResourceAttributes::alwaysOnTop},
    {"SystemMenuButton", kOfDialog, &ResourceAttributes::systemMenuButton},
    {"CloseButton", kOfDialog, &ResourceAttributes::closeButton},
    {"Bitmap", kOfDialog, &ResourceAttributes::bitmap},
    {"TitleBarImage", kOfDialog, &ResourceAttributes::titleBarImage},
};

/// Checks a value against the type of the member that it is for, and stores it.
class ValueSetter {
  public:
    ValueSetter(ResourceAttributes& attributes, std::string_view name, const ResourceNode& value)
        : attributes_(attributes), name_(name), value_(value) {}

    void operator()(bool ResourceAttributes::*member) const {
        Require(value_.kind == ResourceNode::Kind::Name && (value_.text == "True" || value_.text == "False"),
                "True or False");
        attributes_.*member = value_.text == "True";
    }

    void operator()(int ResourceAttributes::*member) const {
        Require(value_.kind == ResourceNode::Kind::Number, "a number");
        attributes_.*member = value_.number;
    }

    /// The only texts are files beside the program, which no path may lead away from.
    void operator()(std::string ResourceAttributes::*member) const {
        Require(value_.kind == ResourceNode::Kind::Text && !value_.text.empty() &&
                    value_.text.find_first_of("\\/:") == std::string::npos,
                "the name of a file");
        attributes_.*member = value_.text;
    }

  private:
    void Require(bool condition, const char* wanted) const {
        if (!condition) {
            throw DescriptionError(value_.line, "attribute \"" + std::string(name_) + "\" needs " + wanted);
        }
    }

    ResourceAttributes& attributes_;
    std::string_view name_;
    const ResourceNode& value_;
};

} // namespace

void SetResourceAttribute(ResourceAttributes& attributes, ResourceType type, std::string_view attribute,
                          const ResourceNode& value) {
    for (std::size_t i = 0; i < std::size(kAttributes); ++i) {
        const Attribute& known = kAttributes[i];
        if (known.name != attribute || (known.types & static_cast<unsigned>(type)) == 0) {
            continue;
        }
        const unsigned bit = 1U << i;
        if ((attributes.given & bit) != 0) {
            throw DescriptionError(value.line, "attribute \"" + std::string(attribute) + "\" is given twice");
        }
        attributes.given |= bit;
        std::visit(ValueSetter(attributes, attribute, value), known.member);
        return;
    }
    throw DescriptionError(value.line, "unknown attribute \"" + std::string(attribute) + "\"");
}

} // namespace host_reference
