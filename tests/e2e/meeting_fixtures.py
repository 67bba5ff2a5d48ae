"""A desktop session, its windows, pages, and one browser after the other, for all tests of a file."""

import signal

import pytest

from desktop import Session
from meeting_site import BROWSERS, Browser, Site
from windows import Windows


@pytest.fixture(scope="module")
def desktop():
    here = Session()
    here.switch_accessibility_on()
    here.open_display()
    yield here
    here.end_session()


@pytest.fixture(scope="module")
def windows(desktop):
    return Windows(desktop)


@pytest.fixture(scope="module")
def site():
    here = Site()
    yield here
    here.end()


@pytest.fixture(scope="module", params=BROWSERS)
def browser(request, desktop, site):
    here = Browser(desktop, site, request.param)
    yield here
    desktop.end(here.process, by=signal.SIGTERM)
