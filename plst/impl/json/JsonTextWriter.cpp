// Implements the layout of the readable dump.
#include "plst/impl/json/JsonTextWriter.h"

#include <algorithm>

#include "plst/impl/json/JsonNumberWriter.h"
#include "plst/visit.h"

namespace nxPLST::impl {

bool JsonTextWriter::write(Item const* root) {
    guard_.watch(root);
    writeItem(root);
    while (!stack_.empty() && !stopped_) writeNext(stack_.back());
    put("\n");
    return out_.flush().ok() && !stopped_;
}

/// Writes the next child of the innermost container, or closes it. Only opens a child that is a container.
void JsonTextWriter::writeNext(ChildWalk& children) {
    if (children.atEnd()) {
        put(children.inDictionary() ? JsonToken::closeObject : JsonToken::closeArray);
        return endValue();
    }
    Item const* item = nullptr;
    if (children.inDictionary()) {
        writeText(children.members.key());
        put(JsonToken::colon);
        item = children.members.item();
        children.members.advance();
    } else {
        item = children.elements.item();
        children.elements.advance();
    }
    writeItem(item);
}

void JsonTextWriter::writeItem(Item const* item) {
    if (!item) return endValue();
    stopped_ = !guard_.allows(written_ + indented_, item);
    if (stopped_) return;
    bool const isContainer = visit(
        *item, [this](Bool const& truth) { return put(truth.value() ? "true" : "false"), false; },
        [this](Double const& number) {
            char text[numberRoom];
            char const* const end = writeShortNumber(text, number.value());
            return put({text, static_cast<std::size_t>(end - text)}), false;
        },
        [this](String const& text) { return writeText(text.value()), false; },
        [this](Array const& array) { return put(JsonToken::openArray), stack_.emplace_back(array), true; },
        [this](Dictionary const& dictionary) {
            return put(JsonToken::openObject), stack_.emplace_back(dictionary), true;
        });
    if (!isContainer) endValue();
}

void JsonTextWriter::endValue() {
    if (!stack_.empty() && !stack_.back().atEnd()) put(JsonToken::comma);
}

void JsonTextWriter::writeText(urString::CString const& text) {
    put("\"");
    put(text.view());
    put("\"");
}

void JsonTextWriter::put(JsonToken token) {
    switch (token) {
        case JsonToken::openObject:
            put("{");
            indentWidth_ += indentStep;
            startLine();
            break;
        case JsonToken::closeObject:
            indentWidth_ -= indentStep;
            startLine();
            put("}");
            stack_.pop_back();
            break;
        case JsonToken::openArray: put("["); break;
        case JsonToken::closeArray:
            put("]");
            stack_.pop_back();
            break;
        case JsonToken::comma: {
            put(",");
            bool const closed = last_ == JsonToken::closeObject || last_ == JsonToken::closeArray;
            if (closed || stack_.back().inDictionary()) {
                startLine();
            } else {
                put(" ");
            }
            break;
        }
        case JsonToken::colon: put(": "); break;
        case JsonToken::none: break;
    }
    last_ = token;
}

void JsonTextWriter::put(std::string_view text) {
    out_.write(text);
    written_ += text.size();
}

void JsonTextWriter::startLine() {
    static constexpr std::string_view spaces = "                                                                ";
    put("\n");
    if (indented_ + indentWidth_ > freeIndentation_ + indentationPerByte * written_) return;
    indented_ += indentWidth_;
    for (std::size_t left = indentWidth_; left > 0; left -= std::min(left, spaces.size())) {
        out_.write(spaces.substr(0, left));
    }
}

}  // namespace nxPLST::impl
