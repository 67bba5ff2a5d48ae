#include "platform/linux/notifications/NotificationProtocol.h"

#include "base/ApplicationId.h"
#include "platform/linux/glib/Utf8.h"

namespace quorva::notifications {
namespace {

constexpr const char* programName = "Quorva";
constexpr std::int32_t serversOwnTime = -1;

bool changesDirection(gunichar character) {
    return (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

bool isAllowed(gunichar character) {
    return g_unichar_type(character) != G_UNICODE_CONTROL && (character & 0xFFFE) != 0xFFFE &&
           !changesDirection(character);
}

/// The character to write instead: mostly the same one; 0 to leave it out.
gunichar replacementOf(gunichar character, Lines lines) {
    constexpr gunichar lineSeparator = 0x2028;
    constexpr gunichar paragraphSeparator = 0x2029;
    if (character == '\n' || character == '\r' || character == lineSeparator ||
        character == paragraphSeparator)
        return lines == Lines::keep ? '\n' : ' ';
    if (character == '\t')
        return ' ';
    return isAllowed(character) ? character : 0;
}

/// Whether a character combines with the one before it.
bool joins(gunichar character) {
    constexpr gunichar zeroWidthJoiner = 0x200D;
    const bool isSkinTone = character >= 0x1F3FB && character <= 0x1F3FF;
    return g_unichar_ismark(character) != FALSE || character == zeroWidthJoiner || isSkinTone;
}

void append(std::u32string& text, gunichar character) {
    text.push_back(static_cast<char32_t>(character));
}

void cut(std::u32string& text, std::size_t maxCharacters) {
    constexpr std::size_t longestCluster = 32; // anything longer is an attack
    constexpr char32_t zeroWidthJoiner = 0x200D;
    std::size_t end = maxCharacters - 1;
    const auto isWithin = [&] { return joins(text[end]) || text[end - 1] == zeroWidthJoiner; };
    for (std::size_t steps = 0; steps < longestCluster && end > 1 && isWithin(); ++steps)
        --end;
    text.resize(end);
    text.push_back(U'…');
}

std::string utf8(const std::u32string& text) {
    std::string bytes;
    for (const char32_t character : text) {
        char buffer[6];
        const int length = g_unichar_to_utf8(character, buffer);
        bytes.append(buffer, static_cast<std::size_t>(length));
    }
    return bytes;
}

guchar urgencyLevel(NotificationUrgency urgency) {
    switch (urgency) {
    case NotificationUrgency::low:
        return 0;
    case NotificationUrgency::normal:
        return 1;
    case NotificationUrgency::critical:
        return 2;
    }
    return 1;
}

GVariant* encodeHints(const NotificationRequest& request) {
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
    const auto add = [&](const char* key, GVariant* value) {
        g_variant_builder_add(&hints, "{sv}", key, value);
    };
    add("urgency", g_variant_new_byte(urgencyLevel(request.urgency)));
    add("desktop-entry", g_variant_new_string(applicationId));
    if (request.hasSound)
        add("sound-name", g_variant_new_string("message-new-instant"));
    else
        add("suppress-sound", g_variant_new_boolean(TRUE));
    if (!request.categoryIdentifier.empty()) {
        const auto category = "x-quorva." + validUtf8(request.categoryIdentifier);
        add("category", g_variant_new_string(category.c_str()));
    }
    return g_variant_builder_end(&hints);
}

GVariant* encodeButtons(const std::vector<Button>& buttons) {
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
    for (const auto& [key, title] : buttons) {
        g_variant_builder_add(&list, "s", key.c_str());
        g_variant_builder_add(&list, "s", plainText(title, maxTitle, Lines::join).c_str());
    }
    return g_variant_builder_end(&list);
}

} // namespace

Capabilities decodeCapabilities(GVariant* reply) {
    Capabilities capabilities;
    if (reply == nullptr || g_variant_is_of_type(reply, G_VARIANT_TYPE("(as)")) == FALSE)
        return capabilities;
    GVariantIter* names = nullptr;
    g_variant_get(reply, "(as)", &names);
    const gchar* capability = nullptr;
    while (g_variant_iter_next(names, "&s", &capability) != FALSE) {
        const std::string_view known = capability;
        capabilities.actions |= known == "actions";
        // Links and images are markup too, and dunst parses markup even if it names only these.
        capabilities.bodyMarkup |=
            known == "body-markup" || known == "body-hyperlinks" || known == "body-images";
    }
    g_variant_iter_free(names);
    return capabilities;
}

std::optional<std::uint32_t> decodeNumber(GVariant* reply) {
    if (reply == nullptr || g_variant_is_of_type(reply, G_VARIANT_TYPE("(u)")) == FALSE)
        return std::nullopt;
    std::uint32_t number = 0;
    g_variant_get(reply, "(u)", &number);
    return number != 0 ? std::optional(number) : std::nullopt;
}

std::string plainText(std::string_view text, std::size_t maxCharacters, Lines lines) {
    // Enough for the longest result, even when most characters are left out.
    const auto valid = validUtf8(text.substr(0, maxCharacters * 64));
    std::u32string characters;
    const char* const end = valid.data() + valid.size();
    for (const char* at = valid.data(); at < end && characters.size() <= maxCharacters;
         at = g_utf8_next_char(at)) {
        if (*at == '\r' && at + 1 < end && at[1] == '\n')
            continue;
        if (const auto character = replacementOf(g_utf8_get_char(at), lines); character != 0)
            append(characters, character);
    }
    if (characters.size() > maxCharacters)
        cut(characters, maxCharacters);
    return utf8(characters);
}

std::string escaped(std::string_view text) {
    std::string markup;
    for (const char character : text) {
        switch (character) {
        case '&':
            markup += "&amp;";
            break;
        case '<':
            markup += "&lt;";
            break;
        case '>':
            markup += "&gt;";
            break;
        default:
            markup += character;
        }
    }
    return markup;
}

GVariant* encode(const NotificationRequest& request, const std::vector<Button>& buttons,
                 std::uint32_t replaces, const Capabilities& capabilities) {
    const auto title = plainText(request.title, maxTitle, Lines::join);
    const auto body = plainText(request.body, maxBody, Lines::keep);
    return g_variant_new("(susss@as@a{sv}i)", programName, replaces, applicationId, title.c_str(),
                         (capabilities.bodyMarkup ? escaped(body) : body).c_str(),
                         encodeButtons(capabilities.actions ? buttons : std::vector<Button>{}),
                         encodeHints(request), serversOwnTime);
}

} // namespace quorva::notifications
