'use strict';
// The tiles: each loads its frames when it comes near the screen, and lets go of them when it has left.

class Tile {
  constructor(transition, number) {
    this.transition = transition;
    // In up to nine columns, those beside and below each other stay a tenth of the time apart or more.
    this.ahead = (number * 3 % 10) / 10 * period;
    this.item = document.createElement('li');
    this.button = document.createElement('button');
    this.button.type = 'button';
    this.button.className = 'tile';
    this.canvas = document.createElement('canvas');
    this.canvas.width = gallery.width;
    this.canvas.height = gallery.height;
    this.canvas.setAttribute('role', 'img');
    this.canvas.setAttribute('aria-label', `${gallery.from} becomes ${gallery.to}:`);
    const name = document.createElement('span');
    name.className = 'name';
    name.textContent = transition.name;
    const family = document.createElement('span');
    family.className = 'family';
    family.textContent = transition.family;
    this.button.append(this.canvas, name, family);
    this.button.title = transition.sentence;
    this.star = document.createElement('button');
    this.star.type = 'button';
    this.star.className = 'star';
    this.star.title = 'Gather for one film (S)';
    this.star.append(document.getElementById('star-shape').content.cloneNode(true));
    this.item.append(this.button, this.star);

    this.strip = null;
    this.near = false;
    this.startedAt = null;  // when it plays alone
    this.shown = -1;
    this.button.addEventListener('pointerenter', () => this.startAlone());
    this.button.addEventListener('pointerleave', () => this.stopAlone());
    this.button.addEventListener('focus', () => this.startAlone());
    this.button.addEventListener('blur', () => this.stopAlone());
  }

  startAlone() {
    if (reducedMotion.matches || playingAll()) return;
    this.startedAt = performance.now();
    animate();
  }

  stopAlone() {
    this.startedAt = null;
    if (!playingAll()) this.show(restingFrame);
  }

  show(frame) {
    if (!this.strip || frame === this.shown) return;
    this.shown = frame;
    this.strip.draw(this.canvas, frame);
    this.canvas.dataset.frame = frame;
  }

  async setNear(near) {
    if (near === this.near) return;
    this.near = near;
    if (!near) {
      this.strip = null;
      return;
    }
    try {
      const image = await loadSprite(this.transition);
      if (!this.near) return;
      const pixels = Math.round(this.canvas.clientWidth * window.devicePixelRatio);
      this.strip = new FilmStrip(image, pixels || gallery.width);
      this.shown = -1;
      this.show(restingFrame);
      animate();
    } catch {
      this.button.classList.add('broken');
      this.button.title = `${this.transition.sprite} cannot be read`;
    }
  }
}

const reducedMotion = matchMedia('(prefers-reduced-motion: reduce)');
const restingFrame = Math.floor((frameCount - 1) / 2);
const playAllButton = document.getElementById('play-all');
const tiles = gallery.transitions.map((transition, number) => new Tile(transition, number));

const playingAll = () => playAllButton.getAttribute('aria-pressed') === 'true';

let animating = false;

/** Keeps the tiles moving for as long as any of them plays. */
function animate() {
  if (animating) return;
  animating = true;
  const began = performance.now();
  const step = (now) => {
    let moving = false;
    for (const tile of tiles) {
      if (!tile.strip || viewer.open) continue;
      const start = tile.startedAt ?? (playingAll() ? began - tile.ahead : null);
      if (start === null) continue;
      moving = true;
      tile.show(frameAt(Math.max(now - start, 0)));
    }
    animating = moving;
    if (moving) requestAnimationFrame(step);
  };
  requestAnimationFrame(step);
}

function setPlayingAll(playing) {
  playAllButton.setAttribute('aria-pressed', playing);
  playAllButton.textContent = playing ? 'Pause all' : 'Play all';
  if (playing) {
    animate();
  } else {
    for (const tile of tiles) tile.show(restingFrame);
  }
}

/** Moves the focus from tile to tile as they stand on the screen. */
function moveFocus(event) {
  const shown = tiles.filter((tile) => !tile.item.hidden);
  const at = shown.findIndex((tile) => tile.button === document.activeElement);
  if (at < 0) return;
  if (event.key === 's') toggleGathered(shown[at]);
  const top = shown[0].item.offsetTop;
  const across = shown.findIndex((tile) => tile.item.offsetTop !== top);
  const columns = across < 0 ? shown.length : across;
  const steps = { ArrowLeft: -1, ArrowRight: 1, ArrowUp: -columns, ArrowDown: columns };
  const target = { Home: 0, End: shown.length - 1 }[event.key] ?? at + (steps[event.key] ?? NaN);
  if (!shown[target]) return;
  event.preventDefault();
  shown[target].button.focus();
}
