"""Invitations that strangers send: text of .ics files. Each is at most a few megabytes, as mail servers
deliver them."""

import datetime
import itertools

MEGABYTE = 1_000_000
PHRASE = "Please join the quarterly planning meeting. "


def soon(minutes=30):
    """A time that the calendar's scans look at, in the form of the files."""
    return f"{datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(minutes=minutes):%Y%m%dT%H%M%SZ}"


def calendar(*parts):
    return "\r\n".join(["BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//x//EN", *parts, "END:VCALENDAR", ""])


def event(uid, *lines, minutes=30):
    return "\r\n".join(["BEGIN:VEVENT", f"UID:{uid}", f"DTSTART:{soon(minutes)}", "DURATION:PT30M",
                        *lines, "END:VEVENT"])


def series_of_every_minute(number):
    return calendar(event(f"minutely{number}", "RRULE:FREQ=MINUTELY",
                          "SUMMARY:" + PHRASE * (MEGABYTE // len(PHRASE)),
                          "ATTENDEE:mailto:bob@example.org"))


def address_of_many_schemes():
    return calendar(event("mailto", "ATTENDEE:" + "mailto:" * (MEGABYTE // 7) + "bob@example.org"))


def zones_of_many_rules():
    """Zones with many onsets every second of the year, one for each of many events."""
    part = ["BEGIN:STANDARD", "DTSTART:19700101T000000", "TZOFFSETFROM:+0100", "TZOFFSETTO:+0200",
            "RRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30", "END:STANDARD"]
    zones = [["BEGIN:VTIMEZONE", f"TZID:Z{number}", *part * 30, "END:VTIMEZONE"] for number in range(190)]
    events = [event(f"zone{number}", f"DTSTART;TZID=Z{number}:20260101T000000",
                    "RRULE:FREQ=DAILY", "ATTENDEE:mailto:bob@example.org") for number in range(190)]
    return calendar(*itertools.chain(*zones), *events)


def rules_by_the_thousand():
    lists = ("BYSECOND=" + ",".join(map(str, range(60))), "BYMINUTE=" + ",".join(map(str, range(60))),
             "BYYEARDAY=" + ",".join(map(str, range(1, 367))),
             "BYSETPOS=" + ",".join(map(str, range(1, 367))))
    rule = "RRULE:FREQ=YEARLY;" + ";".join(lists)
    return calendar(*(event(f"rules{number}", *[rule] * 8) for number in range(420)))


def dates_without_values():
    return calendar(event("dates", "RDATE;" + ";".join(["X="] * (MEGABYTE // 3)) + ":",
                          *["RDATE:"] * 100_000))


def attendees_by_the_thousand():
    """With a person's address each, in one event that recurs."""
    return calendar(event("people", "RRULE:FREQ=HOURLY", *(
        f"ATTENDEE;CN=Person {number}:mailto:person{number}@example.org" for number in range(30_000))))


def components_within_components():
    depth = 100_000
    return calendar(*["BEGIN:VEVENT"] * depth, *["END:VEVENT"] * depth)


def bots_by_the_thousand(count=20_000):
    """An event with a note-taker each: a flood of true finds."""
    products = ("bot@fathom.video", "bot@avoma.com", "bot@sembly.ai")
    return calendar(*(event(f"flood{number}", f"ATTENDEE:mailto:{products[number % len(products)]}",
                            minutes=20 + number % 600) for number in range(count)))


def texts_that_act_on_terminals():
    name = "Fathom Notetaker\x1b[2J\x1b]0;owned\x07\u009b31m\u202etxt.exe" + "A" * 20_000
    return calendar(event("texts", f'ATTENDEE;CN="{name}":mailto:bot@fathom.video'),
                    event("U" * 200_000, "ATTENDEE:mailto:" + "a" * 200_000 + "@fathom.video"))
