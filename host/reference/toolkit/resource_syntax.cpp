// A parser by recursive descent, one character ahead.
#include "toolkit/resource_syntax.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host_reference {

namespace {

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

bool IsNameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           IsDigit(character) || character == '_' || character == '.';
}

class Parser {
  public:
    explicit Parser(std::string_view text) : rest_(text) {}

    ResourceNode ParseAll() {
        ResourceNode all;
        for (SkipBlanks(); !rest_.empty(); SkipBlanks()) {
            if (rest_.front() == ')') {
                throw DescriptionError(line_, "\")\" closes nothing");
            }
            if (rest_.front() != '(') {
                throw DescriptionError(line_, "\"(\" expected");
            }
            all.children.push_back(ParseList(1));
        }
        all.line = line_;
        return all;
    }

  private:
    ResourceNode ParseList(int depth) {
        if (depth > kDeepestNesting) {
            throw DescriptionError(line_, "lists are nested too deeply");
        }
        ResourceNode list = NodeHere(ResourceNode::Kind::List);
        rest_.remove_prefix(1);
        for (SkipBlanks(); !rest_.empty(); SkipBlanks()) {
            if (rest_.front() == ')') {
                rest_.remove_prefix(1);
                return list;
            }
            list.children.push_back(rest_.front() == '(' ? ParseList(depth + 1) : ParseAtom());
        }
        throw DescriptionError(list.line, "\"(\" is not closed");
    }

    ResourceNode ParseAtom() {
        const char first = rest_.front();
        if (first == '"') {
            return ParseText();
        }
        if (IsDigit(first) || first == '-') {
            return ParseNumber();
        }
        if (IsNameCharacter(first)) {
            ResourceNode name = NodeHere(ResourceNode::Kind::Name);
            name.text = TakeNameCharacters();
            if (name.text.size() > kLongestName) {
                throw DescriptionError(line_, "name is too long");
            }
            return name;
        }
        throw DescriptionError(line_, std::string("unexpected character \"") + first + "\"");
    }

    ResourceNode ParseText() {
        rest_.remove_prefix(1);
        // A text ends on its line, so that a forgotten quote is reported where it was forgotten.
        const std::size_t end = rest_.find_first_of("\"\n");
        if (end == std::string_view::npos || rest_[end] != '"') {
            throw DescriptionError(line_, "text is not closed");
        }
        ResourceNode node = NodeHere(ResourceNode::Kind::Text);
        node.text = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return node;
    }

    ResourceNode ParseNumber() {
        const bool negative = rest_.front() == '-';
        rest_.remove_prefix(negative ? 1 : 0);
        const std::string_view digits = TakeNameCharacters();
        if (digits.empty() || !std::all_of(digits.begin(), digits.end(), IsDigit)) {
            throw DescriptionError(line_, "malformed number");
        }
        ResourceNode node = NodeHere(ResourceNode::Kind::Number);
        for (const char digit : digits) {
            node.number = node.number * 10 + (digit - '0');
            if (node.number > kLargestNumber) {
                throw DescriptionError(line_, "number is too large");
            }
        }
        node.number = negative ? -node.number : node.number;
        return node;
    }

    std::string_view TakeNameCharacters() {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), IsNameCharacter);
        const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    void SkipBlanks() {
        while (!rest_.empty() && IsBlank(rest_.front())) {
            line_ += rest_.front() == '\n' ? 1 : 0;
            rest_.remove_prefix(1);
        }
    }

    ResourceNode NodeHere(ResourceNode::Kind kind) const {
        ResourceNode node;
        node.kind = kind;
        node.line = line_;
        return node;
    }

    std::string_view rest_;
    int line_ = 1;
};

} // namespace

std::string Quoted(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

ResourceNode ParseResource(std::string_view text) {
    return Parser(text).ParseAll();
}

} // namespace host_reference
