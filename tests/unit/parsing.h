#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

/// What a parser answers to a reply.
template <class Parser>
int parse(Parser& reply, std::string text) {
    return reply.Parser(text.data());
}

/// A parser of JSON objects refuses everything else, and these replies.
template <class Parser>
void expectRefusesAllButObjects(std::initializer_list<std::string> hostile = {}) {
    const auto expectRefused = [](const std::string& text) {
        Parser reply;
        EXPECT_EQ(parse(reply, text), -1) << text.substr(0, 200);
    };
    for (const char* text :
         {"", "sorry", "<html/>", "[]", "[{}]", "5", "null", "true", "\"status\"", "{\"status\":1"})
        expectRefused(text);
    expectRefused(std::string(5000, '[') + std::string(5000, ']'));
    expectRefused(std::string(5000, '{'));
    for (const std::string& text : hostile) expectRefused(text);
    Parser reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
