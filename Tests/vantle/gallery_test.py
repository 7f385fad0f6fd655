"""The page that `vantle gallery` makes, in a browser: gallery_test.py VANTLE [TEST...]"""
import base64, operator, pathlib, shlex, subprocess, sys, tempfile, time, unittest

from selenium.webdriver import Chrome, ChromeOptions, Keys
from selenium.webdriver.chrome.service import Service

vantle = sys.argv[1]
temporary = tempfile.TemporaryDirectory(prefix='vantle-test-')
folder = pathlib.Path(temporary.name)


def run(*command):
    return subprocess.run(command, cwd=folder, check=True, stdout=subprocess.PIPE).stdout


def luma(png):
    return run('ffmpeg', '-v', 'error', '-i', png, '-f', 'rawvideo', '-pix_fmt', 'gray', '-')


class GalleryTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        for name, picture in (('from', 'gradients=c0=navy:c1=teal:seed=3:'), ('to a b', 'mandelbrot=')):
            run('ffmpeg', '-v', 'error', '-f', 'lavfi', '-i', f'{picture}s=480x270', '-frames:v', '1', f'{name}.png')
        run(vantle, 'gallery', '-q', 'from.png', 'to a b.png', '-o', 'gallery')
        options = ChromeOptions()
        options.binary_location = '/usr/bin/chromium'
        options.arguments.extend(['--headless=new', '--no-sandbox', '--disable-dev-shm-usage'])
        options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
        cls.browser = Chrome(service=Service('/usr/bin/chromedriver'), options=options)
        cls.addClassCleanup(cls.browser.quit)
        cls.script, cls.shot = cls.browser.execute_script, cls.browser.get_screenshot_as_png

        cls.devtools = cls.browser.execute_cdp_cmd

    def open(self, motion, width=1600, height=1000):
        self.devtools('Emulation.setDeviceMetricsOverride',
                      dict(width=width, height=height, deviceScaleFactor=1, mobile=False))
        self.devtools('Emulation.setEmulatedMedia', dict(features=[dict(name='prefers-reduced-motion', value=motion)]))
        self.browser.get((folder / 'gallery/index.html').as_uri())

    def tearDown(self):
        self.assertEqual(self.browser.get_log('browser'), [])

    # Asked of the page at once: the driver's own ways ask of each element, which takes most of a minute.
    def find(self, selector, of='e'):
        return self.script('return [...document.querySelectorAll(arguments[0])]'
                           f'.filter((e) => e.checkVisibility()).map((e) => {of})', selector)

    def texts(self, selector):
        return self.find(selector, 'e.innerText.trim()')

    def frames(self):
        return self.script('return tiles.filter((tile) => tile.strip).map((tile) => tile.canvas.dataset.frame)')

    def press(self, *keys):
        self.browser.switch_to.active_element.send_keys(*keys)

    def until(self, holds, what):
        end = time.monotonic() + 20
        while not holds():
            self.assertLess(time.monotonic(), end, what)
            time.sleep(0.02)

    def test_every_tile_loads_and_moves_unless_motion_is_unwanted(self):
        self.open('no-preference')
        for number, tile in enumerate(self.find('.tile canvas')):
            self.script('arguments[0].scrollIntoView({block: "center"})', tile)
            self.until(lambda: tile.get_attribute('data-frame'), 'loads')
            # What it says it shows is looked at in some.
            seen = (lambda: tile.screenshot_as_png) if number % 9 == 0 else lambda: tile.get_attribute('data-frame')
            first = seen()
            self.until(lambda: seen() != first, 'moves')
        self.assertGreater(len(set(self.frames())), 4, 'all move at the same moment')
        self.open('reduce')
        self.until(lambda: len(self.find('.tile [data-frame]')) >= 25, 'loads')
        self.assertEqual(set(self.frames()), {'14'})  # the middle of 0 to 29
        still = self.shot()
        time.sleep(1)
        self.assertEqual(self.shot(), still)
        self.find('#play-all')[0].click()
        self.until(lambda: self.shot() != still, 'moves when asked')

    def test_the_slider_shows_the_very_frame_that_the_command_renders(self):
        self.open('reduce')
        self.find('.tile')[0].click()
        # Pixel for pixel on the screen.
        self.script('picture.style = "position: fixed; inset: 0 auto auto 0; width: 480px; border-radius: 0"')
        for number in range(45):
            frame = 7 * number % 30
            self.until(lambda: self.script('return view.image !== null'), 'loads')
            self.press(Keys.HOME, *[Keys.ARROW_RIGHT] * frame)
            command = shlex.split(self.script('return part("frame-command").textContent'))
            at = command.index('--at') + 1
            self.assertAlmostEqual(float(command[at]), frame / 29, 4)
            if number % 3 == 0 and 'Dissolve 2' not in command:  # it takes the pixels in another order each time
                shot = self.devtools('Page.captureScreenshot',
                                     dict(clip=dict(x=0, y=0, width=480, height=270, scale=1)))
                (folder / 'shot.png').write_bytes(base64.b64decode(shot['data']))
                shown = luma('shot.png')

                def difference(position):
                    run(vantle, *command[1:at], str(position), '-q', '-f', '-o', 'rendered.png')
                    return sum(map(abs, map(operator.sub, luma('rendered.png'), shown))) / (480 * 270)
                right = difference(command[at])
                self.assertLess(right, 4, command)
                for other in {max(frame - 1, 0), min(frame + 1, 29)} if number % 9 == 0 else ():
                    self.assertLess(right, difference(other / 29) + 0.3, command)
            self.press('n')

    def test_search_families_and_keys(self):
        self.open('no-preference', 800, 600)
        self.press('/', 'round zoom')
        self.assertEqual(self.texts('.name'), ['Round_zoom_out', 'Round_zoom_in'])
        for words, found in (('iris', 4), ('soft rim', 2), ('barn', 3), ('no such', 0)):
            self.press(Keys.CONTROL, 'a', Keys.NULL, words)
            self.assertEqual(len(self.texts('.name')), found, words)
        self.press(Keys.CONTROL, 'a', Keys.NULL, Keys.DELETE)
        for family, count in (('warps', 6), ('blends', 3), ('shapes', 14), ('strips', 22)):
            self.find('#families button')[self.texts('#families button').index(family.title())].click()
            self.assertEqual(self.texts('.family'), [family] * count)
        self.script('arguments[0].focus()', self.find('.tile')[0])
        self.press(Keys.ARROW_DOWN)
        focus, first = self.script('const at = (e) => [e.offsetLeft, e.offsetTop, e.offsetHeight];'
                                   'return [document.activeElement.closest("li"), tiles[0].item].map(at)')
        self.assertEqual(focus[0], first[0])
        self.assertLess(focus[1], first[1] + 2 * first[2])
        self.press(Keys.ARROW_UP, Keys.ARROW_RIGHT)
        self.press(Keys.ENTER)
        self.until(lambda: self.find('.playing'), 'plays')
        self.press(Keys.SPACE, Keys.END, Keys.ARROW_LEFT)
        self.assertEqual(self.texts('h2, #frame, #position'), ['Col_vantle', '28 / 29', '0.9655'])
        self.assertLess(self.script('goTo(29); setPlaying(true); return performance.now() - view.startedAt'), 200)
        self.assertEqual(self.script('return [1, running / 2, running - 1].map((time) => frameAt(rest + time))'),
                         [0, 15, 29])
        self.press('p', 'p')
        self.assertEqual(self.texts('h2'), [self.texts('.name')[-1]])
        self.press('n', Keys.ESCAPE)
        self.assertEqual(self.script('return document.activeElement.textContent'), 'Row_vantlestrips')

    def test_gathers_several_for_one_film(self):
        self.open('reduce')
        self.script('tiles[3].star.click(); tiles[1].button.focus()')
        self.press('s', Keys.ENTER, 'n', 's', 's', Keys.ESCAPE)
        self.assertEqual(self.texts('#gathered-count'), ['2 gathered'])
        command = shlex.split(self.texts('#gathered-command')[0])
        self.assertEqual(command[2:9], ['from.png', 'to a b.png', 'from.png', '-t', 'Row_split', '-t', 'Col_vantle'])
        run(vantle, *command[1:], '-q', '--plan')
        self.find('#forget')[0].click()
        self.assertEqual(self.find('#gathered'), [])

    def test_fits_small_screens_names_everything_and_is_small(self):
        for width, height in ((320, 640), (844, 390), (390, 844)):
            self.open('reduce', width, height)
            self.find('.tile')[0].click()
            self.assertLessEqual(self.script('return document.documentElement.scrollWidth'), width)
            self.assertEqual(self.script("""return [...document.querySelectorAll("button, input")].filter((e) => {
                const { width, height } = e.getBoundingClientRect();
                return width && Math.min(width, height) < 44; }).map((e) => e.outerHTML)"""), [])
            for part in 'picture', 'slider':
                self.assertLess(self.script(f'return {part}.getBoundingClientRect().bottom'), height)
            self.find('[data-copy="video-command"]')[0].click()  # which it can be scrolled to
        self.assertEqual(self.script('''return [...document.querySelectorAll("button, input, canvas")].filter((e) =>
            !(e.ariaLabel || e.textContent.trim() || e.labels?.length)).map((e) => e.outerHTML)'''), [])
        self.assertLess(sum(f.stat().st_size for f in folder.glob('gallery/**/*') if f.is_file()), 25e6)


unittest.main(argv=sys.argv[:1] + sys.argv[2:])
