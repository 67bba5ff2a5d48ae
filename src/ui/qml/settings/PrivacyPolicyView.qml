// The privacy policy.
import QtQuick

LegalDocumentView {
    title: "Privacy Policy"
    sections: [
        { id: "summary",
          body: "Quorva looks for meeting bots on your own computer, and everything it sees stays there. It makes no network connections, has no accounts, and collects nothing about you. This page says what it reads, what it keeps, and where." },
        { id: "processing", heading: "Everything Happens On Your Device",
          body: "Processes, calendar events and meeting windows are compared with lists of known bots that are part of the program. The comparison takes place in the computer's memory, and what does not match is forgotten at once." },
        { id: "network", heading: "No Network Connections",
          body: "Quorva opens no connection to the internet: not for detection, not for statistics, not for crash reports. New versions come from the package service of your system. When you press \"Check for Updates…\", or have switched on the daily check, Quorva asks that service on this computer; whether the service itself uses the network is up to your system's settings. The link \"Website\" opens your browser, and only when you press it." },
        { id: "stored", heading: "Data Stored On Your Device",
          body: "Preferences, the detection history (up to 500 entries) and the objection log (up to 200 entries) are kept in ~/.config/quorva/preferences.json. A history entry names the bot, the kind of detection and the time; the titles of your meetings are not written to it. An objection names the template, the bot and the meeting service or the bot that it was about, and the time. Calendar finds that were announced or dismissed are remembered as hashes.\n\nA log of what the program did is kept in ~/.local/state/Logs/Quorva, in up to four files of 5 MiB each, and in your system's journal.\n\nYou can read and delete these files at any time. Removing them removes all that Quorva knows." },
        { id: "permissions", heading: "Permissions And Why They Are Used",
          body: "Processes: the list of running programs is read to find note-takers and recorders. No permission is needed.\n\nCalendars: titles, times and attendees of the events of the next 24 hours are read to find invited bots. Quorva asks you first, and never writes to a calendar.\n\nAccessibility: the texts of meeting windows are read through the desktop's accessibility service to find bots among the participants and recording banners. Windows of other programs are not read.\n\nBoth permissions are optional. Without one of them Quorva goes on with the rest, and shows what it does not see.\n\nSound: objections are spoken through your system's speech service. Quorva asks the sound server which devices there are, and records nothing." },
        { id: "not", heading: "What Quorva Does NOT Do",
          body: "It does not record your screen, your microphone or your camera. It does not read your keyboard, your messages or your files. It does not send, sell or share data. It does not block or remove bots, or take part in your meetings. It puts something on your clipboard only when you object, share or copy." },
        { id: "sharing", heading: "When You Share Something Yourself",
          body: "An objection or a recommendation leaves your computer when you paste it somewhere, and an exported evidence log when you pass the file on. From then on the rules of the place you have chosen apply." },
        { id: "rights", heading: "Your Rights & Contact",
          body: "Nobody but you holds the data that Quorva keeps, so you need to ask nobody to see, correct or delete it: the files named above are all there is. Questions about this policy are answered through the product's website, which the About tab of the settings names." }
    ]
}
