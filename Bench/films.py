"""Joins the same clips with vantle and with FFmpeg's xfade and acrossfade, with the same encoder settings, and
then with vantle ever more of them: films.py VANTLE [FOLDER]. Prints wall time and peak memory of each."""
import os, subprocess, sys, tempfile, time

vantle = os.path.abspath(sys.argv[1])
folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix='vantle-bench-')
os.makedirs(folder, exist_ok=True)
os.chdir(folder)


def run(*command):
    """Seconds and megabytes."""
    start = time.monotonic()
    process = subprocess.Popen(command)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f'{command[0]} failed')
    return time.monotonic() - start, usage.ru_maxrss / 1024


def show(what, seconds, megabytes, name):
    probe = subprocess.run(['ffprobe', '-v', 'error', '-show_entries', 'stream=duration', '-of', 'csv=p=0', name],
                           stdout=subprocess.PIPE, text=True, check=True).stdout.split()
    print(f'{what:28} {seconds:7.1f} s {megabytes:7.0f} MB   pictures {probe[0]} s, sound {probe[1]} s', flush=True)


def clip(name, size, seconds, seed):
    if not os.path.exists(name):
        run('ffmpeg', '-v', 'error', '-f', 'lavfi', '-i',
            f'testsrc2=s={size}:r=30,hue=h={36 * seed}', '-f', 'lavfi', '-i',
            f'sine=f={300 + 40 * seed}:r=48000', '-t', str(seconds), '-c:v', 'libx264', '-preset', 'veryfast', '-crf',
            '20', '-c:a', 'aac', '-y', name)
    return name


clips = [clip(f'clip{i}.mp4', '1920x1080', 10, i) for i in range(10)]
inputs, graph, video, sound = [], '', '0:v', '0:a'
for i, name in enumerate(clips):
    inputs += ['-i', name]
    if i > 0:
        graph += f'[{video}][{i}:v]xfade=duration=1:offset={9 * i}[v{i}];[{sound}][{i}:a]acrossfade=d=1[a{i}];'
        video, sound = f'v{i}', f'a{i}'
for turn in range(2):
    show('xfade, 10 clips of 1080p',
         *run('ffmpeg', '-v', 'error', '-y', *inputs, '-filter_complex', graph[:-1], '-map', f'[{video}]', '-map',
              f'[{sound}]', '-c:v', 'libx264', '-preset', 'ultrafast', '-crf', '18', '-c:a', 'aac', 'xfade.mp4'),
         'xfade.mp4')
    show('vantle, 10 clips of 1080p',
         *run(vantle, 'render', '-q', '-f', *clips, '-t', 'Linear Wipe Right', '--duration', '1', '-o', 'vantle.mp4',
              '--encoder-option', 'preset=ultrafast'), 'vantle.mp4')

short = [clip(f'short{i}.mp4', '1280x720', 1, i) for i in range(10)]
for count in (4, 20, 200):
    show(f'vantle, {count} clips of 720p',
         *run(vantle, 'render', '-q', '-f', *(short * (count // 10 + 1))[:count], '-t', 'random', '--seed', '1',
              '--duration', '0.2', '-o', 'many.mp4', '--encoder-option', 'preset=ultrafast'), 'many.mp4')
