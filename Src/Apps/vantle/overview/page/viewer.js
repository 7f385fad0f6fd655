'use strict';
// The larger view of one transition: its frames one by one, or playing.

const part = (id) => document.getElementById(id);
const viewer = part('viewer');
const picture = part('picture');
const slider = part('slider');

const view = { tile: null, image: null, playing: false, startedAt: 0 };

function showFrame(frame) {
  const { transition } = view.tile;
  const position = String(gallery.positions[frame]);
  slider.value = frame;
  slider.setAttribute('aria-valuetext', `frame ${frame} of ${frameCount - 1}, position ${position}`);
  part('frame').textContent = `${frame} / ${frameCount - 1}`;
  part('position').textContent = gallery.positions[frame].toFixed(4);
  part('frame-command').textContent = renderCommand(
    [transition], '--size', `${gallery.width}x${gallery.height}`, '--at', position,
    '-o', `${fileName(transition)}.png`);
  picture.setAttribute('aria-label',
    `${gallery.from} becomes ${gallery.to} by ${transition.name}, at position ${position}`);
  if (view.image) {
    drawFrame(picture, view.image, frame);
    picture.dataset.frame = frame;
  }
}

function setPlaying(playing) {
  view.playing = playing;
  viewer.classList.toggle('playing', playing);
  part('play').setAttribute('aria-label', playing ? 'Pause' : 'Play');
  if (!playing) return;
  const from = Number(slider.value) === frameCount - 1 ? 0 : Number(slider.value);
  view.startedAt = performance.now() - timeOf(from);
  const step = (now) => {
    if (!view.playing || !viewer.open) return;
    const frame = frameAt(Math.max(now - view.startedAt, 0));
    if (frame !== Number(slider.value)) showFrame(frame);
    requestAnimationFrame(step);
  };
  requestAnimationFrame(step);
}

/** Stops and shows a frame, as whoever moves through time by hand wants it. */
function goTo(frame) {
  setPlaying(false);
  showFrame(Math.min(Math.max(frame, 0), frameCount - 1));
}

async function showTransition(tile) {
  view.tile = tile;
  view.image = null;
  delete picture.dataset.frame;
  const { transition } = tile;
  part('viewer-name').textContent = transition.name;
  part('viewer-kind').textContent =
    transition.function && transition.function !== transition.name
      ? `${transition.family} · ${transition.function}` : transition.family;
  part('viewer-sentence').textContent = transition.sentence;
  showStar(tile);
  part('video-command').textContent = renderCommand([transition], '-o', `${fileName(transition)}.mp4`);
  picture.width = gallery.width;
  picture.height = gallery.height;
  showFrame(0);
  if (!viewer.open) viewer.showModal();
  slider.focus();
  setPlaying(false);
  try {
    const image = await loadSprite(transition);
    if (view.tile !== tile) return;  // another was asked for meanwhile
    view.image = image;
    showFrame(Number(slider.value));
    setPlaying(!reducedMotion.matches && slider.value === '0');
  } catch {
    if (view.tile === tile) part('viewer-kind').textContent = `${transition.sprite} cannot be read`;
  }
}

/** Shows the transition that many places on among those found, from the end to the start. */
function showOther(places) {
  const found = tiles.filter((tile) => !tile.item.hidden);
  const at = found.indexOf(view.tile);
  showTransition(found[(at + places + found.length) % found.length]);
}

function viewerKey(event) {
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  const frame = Number(slider.value);
  const actions = {
    ' ': () => setPlaying(!view.playing),
    ArrowLeft: () => goTo(frame - 1),
    ArrowRight: () => goTo(frame + 1),
    Home: () => goTo(0),
    End: () => goTo(frameCount - 1),
    n: () => showOther(1),
    p: () => showOther(-1),
    s: () => toggleGathered(view.tile),
  };
  const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
  // A button takes the space for itself.
  if (!actions[key] || (key === ' ' && event.target.closest('button'))) return;
  event.preventDefault();
  actions[key]();
}

slider.max = frameCount - 1;
slider.addEventListener('input', () => goTo(Number(slider.value)));
viewer.addEventListener('keydown', viewerKey);
viewer.addEventListener('click', (event) => {
  if (event.target === viewer) viewer.close();  // beside it
});
viewer.addEventListener('close', () => {
  setPlaying(false);
  view.tile.button.focus();
  animate();
});
part('play').addEventListener('click', () => setPlaying(!view.playing));
part('previous').addEventListener('click', () => showOther(-1));
part('next').addEventListener('click', () => showOther(1));
part('close').addEventListener('click', () => viewer.close());
