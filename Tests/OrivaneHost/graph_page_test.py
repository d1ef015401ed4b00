#!/usr/bin/python3
"""The drawn graph in a browser: what a person does with the page. Usage: graph_page_test.py ORIVANE SAMPLE_PROJECT [SCREENSHOT]

Leaves a screenshot with a selected node, for people to look at.
"""

import pathlib
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

ROOT = "/Game/Maps/L_Harbour"
NEIGHBOUR = "/Game/Maps/L_Harbour_Gameplay"


def open_browser():
    options = webdriver.ChromeOptions()
    for switch in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--window-size=1500,950"):
        options.add_argument(switch)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    options.binary_location = "/usr/bin/chromium"
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class Page:
    def __init__(self, browser, url):
        self.browser = browser
        browser.get(url)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def count(self, selector):
        return len(self.browser.find_elements(By.CSS_SELECTOR, selector))

    def node(self, path):
        return self.one(f'.node[data-path="{path}"]')

    def shown_nodes(self):
        return self.count(".node:not([hidden])")


def check(what, holds):
    if not holds:
        raise AssertionError(what)


def check_drawing(page):
    nodes, links = page.shown_nodes(), page.count(".edge")
    check("the page draws nodes and links", nodes > 20 and links >= nodes - 1)
    check("the root is marked", page.one(".node.root").get_attribute("data-path") == ROOT)
    check("editor links look different", 0 < page.count(".edge.editor") < links)
    colors = page.browser.execute_script(
        "return new Set([...document.querySelectorAll('.node rect')].map(r => r.getAttribute('fill'))).size")
    check("kinds have colours", colors > 3)
    outside = page.browser.execute_script(
        "const c = document.getElementById('canvas').getBoundingClientRect();"
        "return [...document.querySelectorAll('.node')].filter(n => { const b = n.getBoundingClientRect();"
        " return b.left < c.left || b.right > c.right || b.top < c.top || b.bottom > c.bottom; }).length")
    check("everything is in view at first", outside == 0)


def check_details(page, screenshot):
    page.node(NEIGHBOUR).click()
    check("a click opens the details", page.one("#detail-path").text == NEIGHBOUR and page.one("#detail-kind").text == "World")
    links = [button.text for button in page.browser.find_elements(By.CSS_SELECTOR, "#detail-links button")]
    check("the details list the links", ROOT in links)
    page.browser.save_screenshot(screenshot)
    page.one(f"#detail-links button:nth-of-type({links.index(ROOT) + 1})").click()
    check("a link of the details leads on", page.one("#detail-path").text == ROOT)
    page.one("body").send_keys(Keys.ESCAPE)
    check("Escape closes them", not page.one("#details").is_displayed())


def check_filter(page):
    before = page.shown_nodes()
    worlds = page.count(".node[aria-label$=', World']")
    box = page.one('#kinds input[value="World"]')
    box.click()
    check("a kind can be hidden, but for the root", page.shown_nodes() == before - worlds + 1 and page.node(ROOT).is_displayed())
    box.click()
    check("and shown again", page.shown_nodes() == before)
    page.one('#types input[value="Editor"]').click()
    check("links of a type can be hidden", page.count(".edge.editor:not([hidden])") == 0)
    page.one('#types input[value="Editor"]').click()


def check_search(page):
    find = page.one("#find")
    find.send_keys("harbour_GAME")
    check("a name is found without regard to case", page.count(".node.found") == 1 and page.one("#found").text == "1 found")
    find.send_keys(Keys.ENTER)
    check("Enter selects what was found", page.one("#detail-path").text == NEIGHBOUR)
    find.clear()
    find.send_keys("no such asset")
    check("nothing found is said", page.one("#found").text == "0 found")
    find.clear()
    find.send_keys(Keys.ESCAPE)


def check_pan_and_zoom(page):
    transform = lambda: page.one("#world").get_attribute("transform")
    page.one("#fit").click()
    before = transform()
    page.one("#zoom-in").click()
    zoomed = transform()
    check("a button zooms", zoomed != before)
    canvas = page.one("#canvas")
    ActionChains(page.browser).move_to_element_with_offset(canvas, -560, -380).click_and_hold().move_by_offset(60, 40).release().perform()
    panned = transform()
    check("dragging pans", panned != zoomed and panned.split("scale")[1] == zoomed.split("scale")[1])
    page.browser.execute_script(
        "document.getElementById('canvas').dispatchEvent(new WheelEvent('wheel', {deltaY: -200, clientX: 600, clientY: 300, cancelable: true}))")
    check("the wheel zooms", transform().split("scale")[1] != panned.split("scale")[1])
    page.one("#fit").click()
    check("Fit goes back", transform() == before)


def main():
    orivane, project = sys.argv[1:3]
    screenshot = sys.argv[3] if len(sys.argv) > 3 else "graph_page.png"
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "graph.html"
        command = [orivane, "graph", ROOT, "--relation", "both", "--depth", "2", "--all-kinds", "--format", "html", "-o", str(file)]
        subprocess.run(command + ["--project", project, "--no-cache"], check=True)
        text = file.read_text(encoding="utf-8")
        check("the page names nothing outside of itself", "http" not in text.replace("http://www.w3.org/2000/svg", "").replace("http-equiv", ""))
        browser = open_browser()
        try:
            page = Page(browser, file.as_uri())
            check_drawing(page)
            check_details(page, screenshot)
            check_filter(page)
            check_search(page)
            check_pan_and_zoom(page)
            log = browser.get_log("browser")
            check(f"the browser complains of nothing: {log}", not log)
        finally:
            browser.quit()
    print("passed; screenshot:", screenshot)


if __name__ == "__main__":
    main()
