// Puts the parts together: filters, the view of one frame, and the address that says which one is open.

const REPORT = JSON.parse(document.getElementById('report').textContent);
REPORT.frames.forEach((frame, index) => {
  frame.index = index;
  if (has(frame, 'bad_pixels')) frame.defects = frame.line_pixels + frame.bad_pixels;
});

const overview = document.getElementById('overview');
const detail = document.getElementById('detail');

document.title = REPORT.title;
document.getElementById('title').textContent = REPORT.title;
document.getElementById('origin').textContent = `Made by ${REPORT.made_by} with ${REPORT.made_with}. Nothing is loaded from elsewhere.`;
document.getElementById('meanings').append(el('dl', {}, ...MEASURES.flatMap((measure) =>
  [el('dt', {}, `${measure.label} (${measure.unit})`), el('dd', {}, measure.text)])));

{
  const bad = REPORT.frames.filter((frame) => frame.result !== 'done').length;
  const { background, min_coverage: coverage, borders } = REPORT.settings;
  document.getElementById('lead').textContent = [
    plural(REPORT.frames.length, 'frame'), bad === 0 ? 'all of them done' : `${bad} refused or unreadable`,
    background ? `background value ${background}` : null, coverage ? `coverage of ${coverage} % required` : null,
    borders.length > 0 ? `borders replaced: ${borders.join(', ')}` : null,
    commonFolder(REPORT.frames.map((frame) => frame.file)) || null].filter((text) => text !== null).join(' · ');
}

const table = new FrameTable(REPORT.frames);
const summary = makeSummary(REPORT.frames, applyFilters);
const filters = document.getElementById('filters');

function applyFilters() {
  const text = document.getElementById('filter-text').value.trim().toLowerCase();
  const result = document.getElementById('filter-result').value;
  const passing = REPORT.frames.filter((frame) => passes(frame, text, result, summary.limits));
  table.show(passing);
  summary.show(passing);
  document.getElementById('count').textContent = `${passing.length} of ${plural(REPORT.frames.length, 'frame')}`;
}
filters.addEventListener('input', applyFilters);
filters.addEventListener('submit', (event) => event.preventDefault());
filters.addEventListener('reset', () => {
  summary.clear();
  setTimeout(applyFilters);  // once the fields are empty
});

// A whole zoom, so that a pixel is a square of screen pixels: three or more pictures side by side where there is room.
let chosenZoom = 0;
function setZoom(frame) {
  const room = document.documentElement.clientWidth;
  const wished = Math.max(340, room / 5.5);
  const fitting = Math.max(1, Math.min(Math.round(wished / frame.width), Math.floor((room - 36) / frame.width)));
  detail.style.setProperty('--picture', `${(chosenZoom || fitting) * frame.width}px`);
  detail.style.setProperty('--shape', `${frame.width} / ${frame.height}`);
  return fitting;
}

function zoomControl(frame) {
  const options = [0, 1, 2, 3, 4, 6, 8].map((zoom) =>
    el('option', { value: zoom, selected: zoom === chosenZoom }, zoom === 0 ? 'fit' : `${zoom} ×`));
  return el('label', {}, 'Zoom ', el('select', {
    id: 'zoom', change: (event) => { chosenZoom = Number(event.target.value); setZoom(frame); },
  }, ...options));
}

function neighbour(frame, step, text) {
  const place = table.order.indexOf(frame);
  const other = place < 0 ? undefined
    : (step < 0 ? table.order.slice(0, place).reverse() : table.order.slice(place + 1)).find((one) => one.result !== 'unreadable');
  return other ? el('a', { class: 'button', href: `#frame=${other.index}`, title: other.file }, text)
    : el('a', { class: 'button', role: 'link', 'aria-disabled': 'true' }, text);
}

function figureList(frame) {
  return el('dl', { class: 'figures' }, ...MEASURES.map((measure) => el('div', { title: measure.text },
    el('dt', {}, measure.label),
    el('dd', {}, el('strong', {}, has(frame, measure.key) ? String(frame[measure.key]) : '–'),
      has(frame, measure.key) ? ` ${unitOf(measure, frame[measure.key])}` : ''))));
}

function openFrame(frame) {
  const data = document.getElementById(`frame-${frame.index}`);
  const cards = data ? new Stages(frame, JSON.parse(data.textContent)).cards() : [];
  setZoom(frame);
  detail.replaceChildren(
    el('nav', { 'aria-label': 'Frames', class: 'bar' }, el('a', { class: 'button', href: '#' }, 'All frames'),
      neighbour(frame, -1, 'Previous'), neighbour(frame, 1, 'Next'), zoomControl(frame)),
    el('h2', { id: 'detail-title', tabindex: '-1' }, baseName(frame.file)),
    el('p', { class: 'muted' }, `${frame.file} · ${frame.width} × ${frame.height} pixels`),
    ...frame.problems.map((problem) => el('p', { class: 'problem' }, problem)),
    figureList(frame),
    data ? el('p', { class: 'muted' }, 'Drag the line over a picture, or move it by the arrow keys: left of it the frame before, right of it after.')
      : el('p', {}, 'The stages of this frame are not in the report; --details says how many are.'),
    el('div', { class: 'stages' }, ...cards));
  overview.hidden = true;
  detail.hidden = false;
  document.title = `${baseName(frame.file)} – ${REPORT.title}`;
  document.getElementById('detail-title').focus({ preventScroll: true });
  scrollTo(0, 0);
}

let opened = null, position = 0;
function closeFrame() {
  overview.hidden = false;
  detail.hidden = true;
  detail.replaceChildren();
  document.title = REPORT.title;
  scrollTo(0, position);
  document.querySelector(`a[href="#frame=${opened.index}"]`)?.focus({ preventScroll: true });
}

function route() {
  const frame = REPORT.frames[Number(/^#frame=(\d+)$/.exec(location.hash)?.[1] ?? -1)];
  if (frame && frame.result !== 'unreadable') {
    if (!opened) position = scrollY;
    opened = frame;
    openFrame(frame);
  } else if (opened && location.hash === '') {
    closeFrame();
    opened = null;
  }
}

applyFilters();
addEventListener('hashchange', route);
addEventListener('resize', () => { if (opened) setZoom(opened); });
document.addEventListener('DOMContentLoaded', route);  // the details follow this script
