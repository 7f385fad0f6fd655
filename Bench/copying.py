"""Joins two clips of three minutes, and two of twelve, with FFmpeg's xfade and acrossfade, with vantle encoding all,
and with vantle copying what does not change: copying.py VANTLE [FOLDER]. Prints wall time and peak memory, and
how near the frames are to their sources outside the join."""
import subprocess

from clips import clip, run, show, shrunk, start

vantle = start()


def psnr(name, source):
    """Of the first minute, in decibels."""
    text = subprocess.run(['ffmpeg', '-i', name, '-i', source, '-t', '60', '-lavfi', '[0:v][1:v]psnr', '-f', 'null',
                           '-'], stderr=subprocess.PIPE, text=True, check=True).stderr
    return text.rsplit('average:', 1)[1].split()[0]


def longer(name, times):
    made = f'{times}x{name}'
    run('ffmpeg', '-v', 'error', '-y', '-i', name, '-an', '-c', 'copy', 'silent.mp4')
    run('ffmpeg', '-v', 'error', '-y', '-stream_loop', str(times - 1), '-i', 'silent.mp4', '-f', 'lavfi', '-i',
        f'sine=f=400:r=48000:d={shrunk(180) * times}', '-c:v', 'copy', '-c:a', 'aac', made)
    return made


def joined(minutes, all_ways):
    a, b = (clip(f'3min{i}.mp4', '1920x1080', shrunk(180), i) for i in (0, 3))
    if minutes > 3:
        a, b = (longer(name, minutes // 3) for name in (a, b))
    film = [vantle, 'render', '-q', '-f', a, b, '-t', 'Linear Wipe Right', '--duration', '1']
    length = f'{minutes} + {minutes} min'
    show(f'-c copy, {minutes} min', *run('ffmpeg', '-v', 'error', '-y', '-i', a, '-c', 'copy', 'same.mp4'), 'same.mp4')
    for _ in range(3):
        show(f'copied, {length}', *run(*film, '--copy', 'always', '-o', 'copied.mp4'), 'copied.mp4')
    print('    PSNR', psnr('copied.mp4', a), flush=True)
    if not all_ways:
        return
    show(f'all encoded, {length}', *run(*film, '--copy', 'never', '-o', 'encoded.mp4'), 'encoded.mp4')
    print('    PSNR', psnr('encoded.mp4', a), flush=True)
    graph = f'[0:v][1:v]xfade=duration=1:offset={shrunk(60 * minutes) - 1}[v];[0:a][1:a]acrossfade=d=1[a]'
    show(f'xfade, {length}',
         *run('ffmpeg', '-v', 'error', '-y', '-i', a, '-i', b, '-filter_complex', graph, '-map', '[v]', '-map', '[a]',
              '-c:v', 'libx264', '-crf', '18', '-c:a', 'aac', 'xfade.mp4'), 'xfade.mp4')
    print('    PSNR', psnr('xfade.mp4', a), flush=True)


joined(12, False)
joined(3, True)
