"""Films of which most is copied, in a browser: playback_test.py VANTLE"""
import base64, json, pathlib, subprocess, sys, tempfile, unittest

from selenium.webdriver import Chrome, ChromeOptions
from selenium.webdriver.chrome.service import Service

vantle = sys.argv[1]
temporary = tempfile.TemporaryDirectory(prefix='vantle-test-')

# Goes to each time, and tells how bright 8 x 8 cells of the picture are; then plays all of it.
LOOK = '''
const [film, times, done] = arguments, video = document.createElement('video');
video.muted = true;
video.onerror = () => done({error: video.error.message});
video.onloadeddata = async () => {
    const pixels = new OffscreenCanvas(160, 160).getContext('2d', {willReadFrequently: true}), seen = [];
    for (const time of times) {
        const shown = new Promise(shows => video.requestVideoFrameCallback(shows));
        video.currentTime = time;
        await shown;
        pixels.drawImage(video, 0, 0);
        const cell = i => pixels.getImageData(i % 8 * 20, (i >> 3) * 20, 20, 20).data;
        seen.push(Array.from({length: 64}, (_, i) => cell(i).reduce((sum, v, at) => sum + v * (at % 4 < 3), 0) / 1200));
    }
    video.onended = () => done({seen, end: video.currentTime});
    video.currentTime = 0, video.playbackRate = 8, video.play();
};
document.body.append(video);
video.src = 'data:video/mp4;base64,' + film;
'''


def run(*command):
    return subprocess.run(command, cwd=temporary.name, check=True, stdout=subprocess.PIPE).stdout


def clip(name, picture, *coding):
    run('ffmpeg', '-v', 'error', '-f', 'lavfi', '-i', f'{picture}=s=160x160:r=25', '-f', 'lavfi', '-i', 'sine=r=48000',
        '-t', '5', '-vf', 'scale=out_color_matrix=bt709', '-pix_fmt', 'yuv420p', '-colorspace', 'bt709', '-color_primaries',
        'bt709', '-color_trc', 'bt709', '-c:v', 'libx264', *coding, '-c:a', 'aac', name)


class PlaybackTest(unittest.TestCase):
    def test_every_place_shows_what_ffmpeg_shows(self):
        clip('no_b.mp4', 'testsrc2', '-g', '25', '-bf', '0', '-profile:v', 'baseline')
        clip('pyramid.mp4', 'mandelbrot', '-g', '30', '-bf', '8', '-refs', '5', '-x264-params', 'cabac=0')
        clip('intra.mp4', 'testsrc', '-g', '1')
        film = ['no_b.mp4', 'in=0.3', '+Row_split', 'pyramid.mp4', '+cut', 'intra.mp4', '+Row_split', 'no_b.mp4',
                '--duration', '0.4', '-o', 'film.mp4', '--copy', 'always', '-q']
        plan = json.loads(run(vantle, 'render', *film, '--plan', '--json'))
        run(vantle, 'render', *film)
        pictures = run('ffmpeg', '-v', 'error', '-i', 'film.mp4', '-vf', 'format=rgb24,scale=8:8:flags=area', '-f',
                       'rawvideo', '-')
        pictures = [sum(pictures[i:i + 3]) / 3 for i in range(0, len(pictures), 3)]
        frames = [pictures[64 * i:64 * (i + 1)] for i in range(plan['frames'])]
        joins = [entry['join'] for entry in plan['timeline'] if 'join' in entry]
        places = [join['first'] + aside for aside in (-30, 0, -1, 1, 40, 6) for join in joins]
        places += [join['first'] + join['frames'] + aside for join in joins for aside in (30, -1, 12, 0, 1, 3)]
        options = ChromeOptions()
        options.binary_location = '/usr/bin/chromium'
        options.arguments.extend(['--headless=new', '--no-sandbox', '--disable-dev-shm-usage',
                                  '--autoplay-policy=no-user-gesture-required'])
        browser = Chrome(service=Service('/usr/bin/chromedriver'), options=options)
        self.addCleanup(browser.quit)
        browser.set_script_timeout(60)
        data = base64.b64encode((pathlib.Path(temporary.name) / 'film.mp4').read_bytes()).decode()
        result = browser.execute_async_script(LOOK, data, [(place + 0.5) / 25 for place in places])
        self.assertNotIn('error', result)
        for place, seen in zip(places, result['seen']):
            def distance(frame): return sum(abs(a - b) for a, b in zip(frame, seen))
            near = range(max(place - 8, 0), min(place + 9, len(frames)))
            self.assertLessEqual(distance(frames[place]), min(distance(frames[i]) for i in near) + 16, place)
            self.assertLess(distance(frames[place]), 64 * 6, place)
        self.assertAlmostEqual(result['end'], plan['frames'] / 25, delta=0.05)


unittest.main(argv=sys.argv[:1])
