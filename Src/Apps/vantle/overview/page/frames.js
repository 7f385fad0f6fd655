'use strict';
// The frames of the transitions. All frames of one lie in one picture, cell by cell, so that every one of them
// can be shown exactly and at once; a video would only promise the nearest one.

const frameCount = gallery.positions.length;

/** Draws frame number `frame` of a loaded sprite over the whole of a canvas. */
function drawFrame(canvas, image, frame) {
  const { columns, cellWidth, cellHeight, margin } = gallery.sprite;
  const x = (frame % columns) * cellWidth + margin;
  const y = Math.floor(frame / columns) * cellHeight + margin;
  canvas.getContext('2d').drawImage(
    image, x, y, gallery.width, gallery.height, 0, 0, canvas.width, canvas.height);
}

/** The sprite of a transition, ready to be drawn from. */
async function loadSprite(transition) {
  const image = new Image();
  image.src = transition.sprite;
  await image.decode();
  return image;
}

/**
 * All frames of a transition at the size of a tile. A decoded sprite takes many megabytes: a page full of them
 * would make the browser throw them away and decode them again for each picture it shows.
 */
class FilmStrip {
  constructor(image, width) {
    this.width = Math.min(width, gallery.width);
    this.height = Math.max(Math.round(this.width * gallery.height / gallery.width), 1);
    this.frames = document.createElement('canvas');
    this.frames.width = this.width * gallery.sprite.columns;
    this.frames.height = this.height * Math.ceil(frameCount / gallery.sprite.columns);
    const cell = document.createElement('canvas');
    cell.width = this.width;
    cell.height = this.height;
    cell.getContext('2d').imageSmoothingQuality = 'high';
    for (let frame = 0; frame < frameCount; ++frame) {
      drawFrame(cell, image, frame);
      this.frames.getContext('2d').drawImage(cell, ...this.corner(frame));
    }
  }

  corner(frame) {
    const { columns } = gallery.sprite;
    return [(frame % columns) * this.width, Math.floor(frame / columns) * this.height];
  }

  draw(canvas, frame) {
    if (canvas.width !== this.width || canvas.height !== this.height) {
      canvas.width = this.width;
      canvas.height = this.height;
    }
    canvas.getContext('2d').drawImage(this.frames, ...this.corner(frame), this.width, this.height,
                                      0, 0, this.width, this.height);
  }
}

// What a transition plays takes this many milliseconds, and so long it rests at either end.
const running = 1800;
const rest = 300;
const period = running + 2 * rest;

/** The frame to show after playing for `milliseconds`: again and again, resting at both ends. */
function frameAt(milliseconds) {
  const time = milliseconds % period - rest;
  return Math.min(Math.max(Math.floor(time / running * frameCount), 0), frameCount - 1);
}

/** The time at which `frameAt` shows a frame. */
function timeOf(frame) {
  let low = 0;
  while (frameAt(low) < frame) low += 5;
  return low;
}
