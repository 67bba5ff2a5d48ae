"""quorva-scan with calendars in folders. The tests of the calendar service run in their own session."""

import datetime
import json

from conftest import wait_until

NOW = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)


def invitation(attendee, start=NOW + datetime.timedelta(hours=2)):
    return "\r\n".join([
        "BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//test//EN", "BEGIN:VEVENT",
        f"UID:{attendee}", "SUMMARY:Secret merger", f"DTSTART:{start:%Y%m%dT%H%M%SZ}",
        "DURATION:PT1H", f"ATTENDEE;CN=Notes:mailto:{attendee}", "END:VEVENT", "END:VCALENDAR", ""])


def put(folder, name, text):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_text(text)


def look(computer, *arguments):
    scan = computer.scan("--json", *arguments)
    report = json.loads(scan.stdout)
    return scan.returncode, report["sources"]["calendar"], report["detections"]["calendar"]


def test_finds_a_bot_invited_in_two_hours(computer):
    put(computer.home / "data/calendars/work", "a.ics", invitation("notetaker@otter.ai"))
    put(computer.home / "data/calendars/work", "b.ics", invitation("someone@example.org"))
    status, source, [found] = look(computer, "--source", "calendar")
    assert (status, source["status"]) == (1, "ok")
    assert (found["signatureId"], found["confidence"]) == ("otter-cal", 100)
    assert found["eventTitle"] == "Calendar Event"
    start = datetime.datetime.fromisoformat(found["eventStartDate"].replace("Z", "+00:00"))
    assert start == NOW + datetime.timedelta(hours=2)


def test_reads_calendars_only_when_they_are_named(computer):
    put(computer.home / "data/calendars/work", "a.ics", invitation("notetaker@otter.ai"))
    _, source, found = look(computer)
    assert (source["status"], found) == ("no-access", [])
    assert "--source calendar" in source["detail"]


def test_says_what_to_install_where_there_is_no_calendar(computer):
    status, source, _ = look(computer, "--source", "calendar")
    assert (status, source["status"]) == (3, "unavailable")
    assert "install evolution-data-server" in source["detail"]


def test_reads_the_folders_that_the_preferences_name(computer):
    elsewhere = computer.home / "elsewhere"
    put(elsewhere, "a.ics", invitation("fred@fireflies.ai"))
    preferences = computer.home / "config/quorva/preferences.json"
    put(preferences.parent, preferences.name, json.dumps(
        {"version": 1, "preferences": {"calendarFolders": [str(elsewhere), "/nowhere"]}}))
    status, source, [found] = look(computer, "--source", "calendar")
    assert (status, source["status"]) == (1, "unavailable")
    assert found["signatureId"] == "fireflies-cal"
    assert "nowhere" in source["detail"]

    put(elsewhere, "b.ics", invitation("Botond@firm.example"))
    _, _, found = look(computer, "--source", "calendar")
    assert len(found) == 2
    preferences.write_text(preferences.read_text().replace(
        '"/nowhere"]', '"/nowhere"], "myAddresses": ["botond@firm.example"]'))
    _, _, [found] = look(computer, "--source", "calendar")
    assert found["signatureId"] == "fireflies-cal"

    (elsewhere / "b.ics").unlink()
    preferences.write_text('{"version": 1, "pref')
    (elsewhere / "a.ics").unlink()
    status, source, _ = look(computer, "--source", "calendar")
    assert (status, source["status"]) == (3, "unavailable")
    assert "the folders named in the preferences" in source["detail"]
    assert preferences.read_text() == '{"version": 1, "pref', "a look changes nothing"


def test_reports_a_damaged_file_and_still_finds_the_others_events(computer):
    folder = computer.home / "data/calendars/work"
    put(folder, "a.ics", invitation("notetaker@otter.ai"))
    put(folder, "b.ics", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20")
    _, source, [found] = look(computer, "--source", "calendar")
    assert found["signatureId"] == "otter-cal"
    assert source["status"] == "unavailable" and "work" in source["detail"]


def test_watches_the_calendars_beside_a_damaged_file(computer, watch):
    folder = computer.home / "data/calendars/work"
    put(folder, "b.ics", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20")
    watching = watch(source="calendar")
    put(folder, "a.ics", invitation("notetaker@otter.ai"))
    [(_, event)] = wait_until(lambda: watching.of("otter-cal", "signatureId"), "the invitation")
    assert event == "appeared"
