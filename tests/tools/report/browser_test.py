#!/usr/bin/python3
"""Uses a report of `quofp report` in Chromium as a reader would.

Usage: browser_test.py QUOFP [--axe FILE]
With axe.min.js of the npm package axe-core the accessibility of all views is checked, too.
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.common.exceptions import StaleElementReferenceException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

QUOFP = AXE = None
FLAGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
         '--disable-background-networking', '--disable-component-update']


def make_report(folder):
    """Five fingers of unlike coverage, one of them refused, and a file that is no frame."""
    for seed, coverage in enumerate((90, 30, 70, 50, 80)):
        subprocess.run([QUOFP, 'synth', '-o', f'{folder}/finger-{seed}.png', '--seed', str(seed), '--coverage',
                        str(coverage), '--stripes', '8', '--bad-rows', '1'], check=True)
    (folder / 'junk.png').write_text('x')
    run = subprocess.run([QUOFP, 'report', '--min-coverage', '40', '--borders', 'top', '-o', folder / 'report.html',
                          *sorted(folder.glob('*.png'))], stderr=subprocess.DEVNULL, check=False)
    assert run.returncode == 3


class ReportInBrowser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.scratch.name)
        make_report(folder)
        cls.address = f'file://{folder}/report.html'
        options = webdriver.ChromeOptions()
        options.binary_location = '/usr/bin/chromium'
        for flag in [*FLAGS, f'--user-data-dir={folder}/profile']:
            options.add_argument(flag)
        options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
        cls.browser = webdriver.Chrome(service=Service('/usr/bin/chromedriver'), options=options)
        cls.browser.set_page_load_timeout(60)

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.scratch.cleanup()

    def setUp(self):
        self.open()

    def tearDown(self):
        self.assertEqual(self.browser.get_log('browser'), [])

    def open(self, view='', width=1280, dark=False):
        self.browser.execute_cdp_cmd('Emulation.setDeviceMetricsOverride', {
            'width': width, 'height': 900, 'deviceScaleFactor': 1, 'mobile': width < 600})
        self.browser.execute_cdp_cmd('Emulation.setEmulatedMedia', {'features': [
            {'name': 'prefers-color-scheme', 'value': 'dark' if dark else 'light'}]})
        self.browser.get('about:blank')
        self.browser.get(self.address + view)

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def column(self, number):
        return [cell.text for cell in self.all(f'tbody tr > :nth-child({number})')]

    def names(self):
        return [cell.text for cell in self.all('tbody .names > :first-child')]

    def wait_for_focus(self, tag, text):
        """Views follow the address a moment later; with the new one the focus moves to what it is about."""
        def focused(browser):
            element = browser.switch_to.active_element
            return (element.tag_name, element.text) == (tag, text)
        WebDriverWait(self.browser, 20, ignored_exceptions=[StaleElementReferenceException]).until(focused)

    def test_sorts_by_a_heading_with_missing_values_last(self):
        heading = self.find('thead th:nth-child(3)')
        button = heading.find_element(By.TAG_NAME, 'button')
        for direction, order in (('ascending', [1, 3, 2, 4, 0]), ('descending', [0, 4, 2, 3, 1])):
            button.send_keys(Keys.ENTER)
            self.assertEqual(heading.get_attribute('aria-sort'), direction)
            self.assertEqual(self.names(), [f'finger-{i}.png' for i in order] + ['junk.png'])
        self.assertEqual(len(self.all('thead [aria-sort=none]')), len(self.all('thead th')) - 1)

    def test_filters_by_text_result_and_limits_together(self):
        self.find('#filter-text').send_keys('RAW BYTES')
        self.assertEqual(self.names(), ['junk.png'])
        self.find('#filters button').click()
        self.find('[data-limit=coverage-low]').send_keys('60')
        self.assertEqual(self.names(), ['finger-0.png', 'finger-2.png', 'finger-4.png'])
        self.find('[data-limit=coverage-high]').send_keys('85')
        self.assertEqual(self.find('#count').text, '2 of 6 frames')
        passing = self.browser.execute_script(
            "return [...document.querySelectorAll('[aria-label=Coverage] .passing')].filter(b => +b.getAttribute('height')).length")
        self.assertEqual(passing, 2)
        self.find('#filter-result').send_keys('refused')
        self.assertEqual(self.column(1), ['No frame passes the filters.'])
        self.find('#filters button').click()
        self.assertEqual(len(self.names()), 6)
        self.find('#filter-result').send_keys('refused')
        self.assertEqual(self.names(), ['finger-1.png'])

    def test_opens_frames_by_keyboard_and_comes_back_to_the_row(self):
        self.find('thead th:nth-child(3) button').send_keys(Keys.ENTER)
        self.all('tbody a')[1].send_keys(Keys.ENTER)
        self.wait_for_focus('h2', 'finger-3.png')
        self.assertFalse(self.find('#overview').is_displayed())
        cards = ['raw', 'borders', 'stripes', 'balance', 'directions', 'valid', 'background', 'defects', 'bubbles', 'grays',
                 'profiles']
        self.assertEqual([card.get_attribute('id') for card in self.all('.stage')], [f'stage-{name}' for name in cards])
        self.browser.find_element(By.LINK_TEXT, 'Next').send_keys(Keys.ENTER)  # in the order of the table
        self.wait_for_focus('h2', 'finger-2.png')
        self.browser.find_element(By.LINK_TEXT, 'All frames').send_keys(Keys.ENTER)
        self.wait_for_focus('a', 'finger-2.png')
        self.assertTrue(self.find('#overview').is_displayed())
        self.browser.back()
        self.wait_for_focus('h2', 'finger-2.png')
        self.assertFalse(self.find('#overview').is_displayed())

    def test_moves_the_line_of_a_stage_by_keys_and_pointer(self):
        self.open('#frame=0')
        slider = self.find('#stage-balance input')
        clip = lambda: self.browser.execute_script(
            "return getComputedStyle(document.querySelector('#stage-balance .after')).clipPath")
        self.assertEqual(clip(), 'inset(0px 0px 0px 50%)')
        slider.send_keys(Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, Keys.ARROW_LEFT)
        self.assertEqual(clip(), 'inset(0px 0px 0px 51%)')
        self.assertIn('51 %', slider.get_attribute('aria-valuetext'))
        outline = self.browser.execute_script(
            "return getComputedStyle(document.querySelector('#stage-balance .compare')).outlineStyle")
        self.assertEqual(outline, 'solid')  # the focus is seen
        width = slider.size['width']
        webdriver.ActionChains(self.browser).move_to_element_with_offset(slider, width // 4, 0).click().perform()
        self.assertIn(clip(), [f'inset(0px 0px 0px {at}%)' for at in (74, 75, 76)])

    def test_shows_what_the_library_reached_of_a_refused_frame(self):
        self.open('#frame=1')
        self.assertIn('FP_ImagePreproc_Step1 returned 5', self.find('#detail > .problem').text)
        self.assertEqual(len(self.all('#stage-borders')), 1)
        self.assertEqual(len(self.all('#stage-stripes, #stage-balance')), 0)

    def test_draws_pixels_as_whole_squares_and_fits_every_width(self):
        for width in (360, 1280, 3840):
            for view in ('', '#frame=0'):
                self.open(view, width)
                self.assertLessEqual(self.browser.execute_script('return document.documentElement.scrollWidth'), width)
            picture = self.find('#stage-raw img')
            self.assertEqual(picture.size['width'] % 160, 0)
            self.assertGreaterEqual(picture.size['width'], 320)
            self.assertEqual(picture.value_of_css_property('image-rendering'), 'pixelated')

    def test_is_accessible(self):
        if AXE is None:
            self.skipTest('no axe.min.js given')
        for width, dark in ((1280, False), (1280, True), (360, False)):
            for view in ('', '#frame=0', '#frame=1'):
                self.open(view, width, dark)
                self.browser.execute_cdp_cmd('Runtime.evaluate', {'expression': AXE})
                result = self.browser.execute_cdp_cmd('Runtime.evaluate', {
                    'expression': 'axe.run().then(r => JSON.stringify(r.violations.map(v => [v.id, v.nodes[0].html])))',
                    'awaitPromise': True})
                self.assertEqual(json.loads(result['result']['value']), [], (view, width, dark))


if __name__ == '__main__':
    if len(sys.argv) > 3 and sys.argv[2] == '--axe':
        AXE = pathlib.Path(sys.argv[3]).read_text()
    QUOFP = str(pathlib.Path(sys.argv[1]).resolve())
    unittest.main(argv=sys.argv[:1], verbosity=1)
