"""Joins the same clips with vantle and with FFmpeg's xfade and acrossfade, with the same encoder settings, and
then with vantle ever more of them: films.py VANTLE [FOLDER]. Prints wall time and peak memory of each."""
from clips import clip, run, show, shrunk, start

vantle = start()
length = shrunk(10)
clips = [clip(f'clip{i}.mp4', '1920x1080', length, i) for i in range(10)]
inputs, graph, video, sound = [], '', '0:v', '0:a'
for i, name in enumerate(clips):
    inputs += ['-i', name]
    if i > 0:
        graph += f'[{video}][{i}:v]xfade=duration=1:offset={(length - 1) * i}[v{i}];[{sound}][{i}:a]acrossfade=d=1[a{i}];'
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
for count in (4, 20, shrunk(200)):
    show(f'vantle, {count} clips of 720p',
         *run(vantle, 'render', '-q', '-f', *(short * (count // 10 + 1))[:count], '-t', 'random', '--seed', '1',
              '--duration', '0.2', '-o', 'many.mp4', '--encoder-option', 'preset=ultrafast'), 'many.mp4')
