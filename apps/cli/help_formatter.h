// The help of the program and of its commands.
#pragma once

#include "apps/cli/help_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace lumetra {

/// Help that is made of what was declared, without remarks of the parser. The type name of an
/// option is the whole form of its value; of its names, the first short and the first long one
/// are shown.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode /*mode*/) const override {
        return app->get_description() + "\n\n" + usage(*app, name) + arguments(*app) +
               commands(*app) + options(*app) + '\n' + app->get_footer() + '\n';
    }

private:
    using Options = std::vector<const CLI::Option*>;

    /// As the help has it: `-o, --output OUT`.
    static std::string form(const CLI::Option& option) {
        std::string text = option.get_positional() ? option.get_name(true, false) : names(option);
        const std::string value = option.get_type_size() == 0 ? "" : option.get_type_name();
        return value.empty() || option.get_positional() ? text + value : text + ' ' + value;
    }

    static std::string names(const CLI::Option& option) {
        std::string text;
        if (!option.get_snames().empty())
            text = '-' + option.get_snames().front() + ", ";
        return text + "--" + option.get_lnames().front();
    }

    static std::string shortest(const CLI::Option& option) {
        return option.get_snames().empty() ? "--" + option.get_lnames().front()
                                           : '-' + option.get_snames().front();
    }

    static Options positionals(const CLI::App& app) {
        return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
    }

    static std::string usage(const CLI::App& app, const std::string& name) {
        const std::string start = "Usage: " + name + ' ';
        std::string rest = app.get_subcommands({}).empty() ? "[OPTION]..." : "COMMAND [OPTION]...";
        for (const CLI::Option* positional : positionals(app))
            rest += positional->get_required() ? ' ' + form(*positional)
                                               : " [" + form(*positional) + ']';
        for (const CLI::Option* option : app.get_options())
            if (option->get_required() && !option->get_positional())
                rest += ' ' + shortest(*option) + ' ' + option->get_type_name();
        return start + wrapped(rest, start.size(), start.size()) + '\n';
    }

    static std::string section(const std::string& heading, const Options& options) {
        std::string text = '\n' + heading + ":\n";
        for (const CLI::Option* option : options)
            text += helpEntry(form(*option), option->get_description());
        return text;
    }

    static std::string arguments(const CLI::App& app) {
        const Options list = positionals(app);
        return list.empty() ? "" : section("Arguments", list);
    }

    static std::string commands(const CLI::App& app) {
        std::string text;
        for (const CLI::App* command : app.get_subcommands({}))
            text += helpEntry(command->get_name(), command->get_description());
        return text.empty() ? "" : "\nCommands:\n" + text;
    }

    static std::string options(const CLI::App& app) {
        std::vector<std::string> groups = app.get_groups();
        // The first group is the parser's own, of help and version: they go last.
        std::rotate(groups.begin(), groups.begin() + 1, groups.end());
        std::string text;
        for (const std::string& group : groups) {
            const Options list = app.get_options([&](const CLI::Option* option) {
                return option->get_group() == group && !option->get_positional();
            });
            if (!list.empty())
                text += section(group, list);
        }
        return text;
    }
};

} // namespace lumetra
