#include "errors/StringTable.h"

namespace {

constexpr StringResource kStrings[] = {
    // A failed download: closing text, head, and what comes before the reason.
    {1, "\n\nBitte überprüfen Sie Ihre Internetverbindung."},
    {2, "Der Datei Download ist fehlgeschlagen!\n\n"},
    {3, "Möglicher Grund:\n"},
    // Reasons for a failed communication, below their head line.
    {101, "Mögliche Ursachen:"},
    {102, "Keine Verbindung ins Internet"},
    {103, "Firewall oder Security-Programme falsch konfiguriert"},
    {104, "Ungenügende Einstellungen des Internet-Explorer's"},
    {105, "Automatische Cookiebehandlung ausgeschaltet"},
    {106, "Installierte Toolbars (Yahoo!, Bluewin, Google, MSN, Ezilon usw.)"},
    {107, "Installierte Popupblocker (Internet Explorer, CleanMyPC, Companion usw.)"},
    // Title of the window that hosts the browser.
    {108, "Ihr Finanzinstitut online"},
};

} // namespace

std::span<const StringResource> LibraryStrings() {
    return kStrings;
}
