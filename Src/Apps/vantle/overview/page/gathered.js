'use strict';
// The transitions that were marked with a star, and the command for a film of them in that order.

const gathered = new Set();  // of tiles

const starButtons = (tile) => tile === view.tile ? [tile.star, part('star')] : [tile.star];

function showStar(tile) {
  for (const button of starButtons(tile)) {
    button.setAttribute('aria-pressed', gathered.has(tile));
    button.setAttribute('aria-label', `Gather ${tile.transition.name}`);
  }
}

function setGathered(tile, isGathered) {
  if (isGathered) gathered.add(tile);
  else gathered.delete(tile);
  showStar(tile);
  part('gathered').hidden = gathered.size === 0;
  part('gathered-count').textContent = `${gathered.size} gathered`;
  const transitions = [...gathered].map(({ transition }) => transition);
  // A clip between two transitions may be too short for both.
  const options = transitions.length > 1 ? ['--shrink'] : [];
  part('gathered-command').textContent = renderCommand(transitions, ...options, '-o', 'film.mp4');
}

const toggleGathered = (tile) => setGathered(tile, !gathered.has(tile));

for (const tile of tiles) {
  tile.star.addEventListener('click', () => toggleGathered(tile));
  showStar(tile);
}
part('star').addEventListener('click', () => toggleGathered(view.tile));
part('forget').addEventListener('click', () => {
  for (const tile of [...gathered]) setGathered(tile, false);
});
