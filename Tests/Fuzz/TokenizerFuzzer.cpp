#include "Fuzz/Fuzzer.h"
#include "SQL/SQLMetadataTokenizer.h"

/// Tokens cover any text without a gap, are never empty and never outside it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    SQLTokenizerOptions options;
    options.hashStartsComment = data[0] & 1;
    options.nestedComments = data[0] & 2;
    options.recognizesMSSQLVariables = data[0] & 4;
    const QString text = fuzzText(data + 1, size - 1);
    SQLMetadataTokenizer tokenizer(text, options);
    qsizetype end = 0;
    for (SQLToken token{}; tokenizer.next(&token);) {
        require(token.location == end && token.length > 0);
        end += token.length;
        require(end <= text.size());
        require(token.text == QStringView(text).mid(token.location, token.length));
    }
    require(end == text.size());
    return 0;
}
