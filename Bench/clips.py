"""What the benchmarks of films share: clips, and commands with the time and the memory that they take."""
import os, subprocess, sys, tempfile, time


def shrunk(full):
    """How many seconds, or clips: all, or $BENCH_SHRINK times fewer where it is only to be seen that a benchmark
    runs."""
    return max(3, full // int(os.environ.get('BENCH_SHRINK', '1')))


def start():
    """The vantle to measure and the folder to do it in: PROGRAM VANTLE [FOLDER]."""
    vantle = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix='vantle-bench-')
    os.makedirs(folder, exist_ok=True)
    os.chdir(folder)
    return vantle


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
