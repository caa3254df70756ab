#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

// Shell completion made from the tool's own command tree, so it cannot drift from the commands:
// "dialtone --completion bash" and "dialtone --completion zsh" print the script (the build installs both).

// Adds --completion SHELL to the tool; given, it prints the script for the whole tree and the tool ends.
void AddCompletionOption(CLI::App& app);

// Words offered for an option or a command's argument (band names, mode names); a list separated by
// commas is completed word by word.
void OfferValues(CLI::Option* option, std::vector<std::string> words);

// The scripts for the tree below app.
std::string BashCompletion(const CLI::App& app);
std::string ZshCompletion(const CLI::App& app);
