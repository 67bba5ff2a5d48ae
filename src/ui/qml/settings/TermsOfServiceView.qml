// The terms of service.
import QtQuick

LegalDocumentView {
    title: "Terms of Service"
    sections: [
        { id: "agreement",
          body: "By using Quorva you agree to these terms. If you do not agree, do not use the program." },
        { id: "is", heading: "What Quorva Is",
          body: "Quorva is a tool that tells you about AI note-takers, meeting recorders and sales-intelligence assistants that it finds on your computer, in your calendar or in your meetings, and that helps you say that you do not consent." },
        { id: "isnot", heading: "What Quorva Is NOT",
          body: "Quorva is not a lawyer, and nothing in it is legal advice. It is not a security product: it does not stop, block or remove recordings. It is no proof that a meeting is not recorded. It is not a service: it has no server, and nobody watches for you." },
        { id: "templates", heading: "Objection Templates",
          body: "The statements are general texts. Whether a statement has legal effect depends on the law that applies to you, on the meeting, and on what you do besides. Read a statement before you use it, and consult an attorney for your specific situation. You decide whether an objection is made, and you are responsible for what you paste and for what your computer says aloud." },
        { id: "limits", heading: "Detection Limitations",
          body: "Quorva finds what its lists know, where it may look. It misses bots that are new, renamed or hidden, recordings made on other people's devices, phones and room systems, and anything in a source that is switched off or could not be read. It can also be wrong about a person or program with the name of a bot. \"All Clear\" means that nothing known was found, and no more." },
        { id: "use", heading: "Your Use",
          body: "Use Quorva in keeping with the law and with the rules of your workplace, and only on computers and accounts that you may use in this way." },
        { id: "updates", heading: "Updates",
          body: "New versions are installed by your system's package service, under its rules. A new version may change what is detected and how." },
        { id: "warranty", heading: "Disclaimer of Warranties",
          body: "Quorva is provided as it is and as available, without warranty of any kind, express or implied, including the warranties of merchantability, of fitness for a particular purpose and of non-infringement, as far as the law allows. Nobody promises that it finds every bot, that it raises no false alarm, or that it runs without fault." },
        { id: "liability", heading: "Limitation of Liability",
          body: "As far as the law allows, the makers of Quorva are not liable for damages that arise from its use or from not being able to use it, from a bot it has missed or a warning that was wrong, or from an objection made or not made with its help. Liability that the law does not let anyone exclude stays as it is." },
        { id: "changes", heading: "Changes To These Terms",
          body: "These terms come with the program. A later version may bring other terms, which apply from the moment you use that version." }
    ]
}
