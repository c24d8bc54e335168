// The arguments of the console program: understood, or refused with a sentence and status 2.

#include "console/arguments.h"
#include "feed.h"
#include "views/terminal/streams.h"

namespace {

std::string& said() {
    static std::string text;
    return text;
}

}  // namespace

namespace coffrelune::streams {

WriteEnd write(Stream /*stream*/, const std::string& text) {
    said() += text;
    return WriteEnd::complete;
}

}  // namespace coffrelune::streams

namespace coffrelune::fuzz {
namespace {

bool stands(const std::vector<std::string>& words, const std::string& value) {
    for (const std::string& word : words) {
        if (word == value || word.ends_with('=' + value)) return true;
    }
    return false;
}

std::optional<console::Arguments> parse(console::ArgumentParser& parser,
                                        const std::vector<std::string>& words, int& status) {
    said().clear();
    return parser.parse(words, status);
}

// Of one input in 512, chosen by its words, so that it is the same one when it is played again.
bool isChosen(const std::vector<std::string>& words) {
    std::uint64_t number = words.size();
    for (const std::string& word : words) {
        for (const char c : word) number = (number ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    }
    return (number >> 32) % 512 == 0;
}

void run(Feed& feed) {
    // To describe the language takes a hundred times as long as to read a line of it.
    static console::ArgumentParser parser;
    std::vector<std::string> words = {"coffrelune-console"};
    while (!feed.ends()) words.push_back(feed.text());
    int status = -1;
    const auto arguments = parse(parser, words, status);
    if (isChosen(words)) {
        const std::string text = said();
        int again = -1;
        console::ArgumentParser fresh;
        expect(parse(fresh, words, again) == arguments && again == status && said() == text,
               "the lines before change nothing of this one");
    }
    if (!arguments) {
        expect(!said().empty(), "who is refused is told why");
        expect(status == 0 || status == 2, "status 0 for help, 2 for wrong use");
        return;
    }
    expect(said().empty() && status == -1, "nothing is said of what is understood");
    expect(arguments->source.empty() == arguments->destination.empty(), "both ends, or none");
    expect(!(arguments->overwrite && arguments->keep), "replaced or kept, not both");
    expect(!(arguments->direct() && !arguments->configuration.empty()), "settings or none");
    for (const std::string* value :
         {&arguments->source, &arguments->destination, &arguments->configuration}) {
        expect(value->empty() || stands(words, *value), "a value is one that was given");
    }
    for (const auto& [on, name] : {std::pair(arguments->confirmed, "--confirmer"),
                                   std::pair(arguments->originalConfirmed, "--confirmer-source"),
                                   std::pair(arguments->overwrite, "--ecraser")}) {
        bool given = false;
        for (const std::string& word : words) given = given || word.starts_with(name);
        expect(!on || given, "nobody confirms what was not confirmed");
    }
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::run(feed);
    return 0;
}
