#pragma once

#include <string>

/// What a parser answers to a reply.
template <class Parser>
int parse(Parser& reply, std::string text) {
    return reply.Parser(text.data());
}
