"""What a meeting's window shows because others wrote it, and programs that are on the accessibility bus."""

CHAT = [f"message {number} of a long chat" for number in range(5_200)]
LINES = [f"Call +1-555-{number:04} for support notetaker" for number in range(300)]
NAMES = ["\x1b[2J\u202eOtter.ai Notetaker \u009b31m" + "x" * 1_000_000,
         *(f"Fathom Notetaker {number}" for number in range(500))]
