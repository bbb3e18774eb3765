// Builds page elements. Texts become text nodes, never markup.

// el('p', {class: 'note', onclick: fn, hidden: true}, 'text', child, [more], null)
export function el(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith('on')) node.addEventListener(name.slice(2), value);
    else node.setAttribute(name, value === true ? '' : value);
  }
  node.append(...children.flat(2).filter((child) => child !== null && child !== undefined));
  return node;
}

// A card with its heading; `title` is a text or nodes.
export const card = (id, title, ...content) =>
  el('section', {class: 'card', id, 'aria-labelledby': `${id}-title`},
      el('h2', {id: `${id}-title`}, title), content);

// A list of facts: pairs of a text and a dd.
export const facts = (rows, style = 'facts') => el('dl', {class: style},
    rows.map(([name, value]) => el('div', {}, el('dt', {}, name), value)));

// Drawn on a grid of 24, stroked in the text's colour.
const kIcons = {
  recorder: 'M3 7h13v10H3z M16 10.5l5-3v9l-5-3',
  status: 'M3 12h4l3-7 4 14 3-7h4',
  device: 'M4 5h16v11H4z M8 20h8 M12 16v4',
  video: 'M3 6h18v12H3z M10 9.5v5l4.5-2.5z',
  network: 'M2.5 9a14 14 0 0 1 19 0 M6 12.8a9 9 0 0 1 12 0 M9.3 16.4a4 4 0 0 1 5.4 0 M12 20h.01',
  platforms: 'M4 4h16v6H4z M4 14h16v6H4z M8 7h.01 M8 17h.01',
  security: 'M6 11h12v9H6z M8.5 11V8a3.5 3.5 0 0 1 7 0v3',
  maintenance: 'M5 4v16 M12 4v16 M19 4v16 M3 9h4 M10 15h4 M17 8h4',
  done: 'M4 12.5l5 5L20 6.5',
  alert: 'M12 4l9 16H3z M12 10v4.5 M12 17.2h.01',
  info: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18 M12 11v5 M12 8h.01',
  out: 'M10 4H5v16h5 M10 12h11 M17 8l4 4-4 4',
  pin: 'M12 21c-4.5-5-7-8.4-7-11.2a7 7 0 0 1 14 0c0 2.8-2.5 6.2-7 11.2z M12 7.5v5 M9.5 10h5',
  disk: 'M3 14l3-9h12l3 9v5H3z M3 14h18 M17 16.7h.01',
  plug: 'M9 3v5 M15 3v5 M6 8h12v3a6 6 0 0 1-12 0z M12 17v4',
  chip: 'M7 7h10v10H7z M10 3v4 M14 3v4 M10 17v4 M14 17v4 M3 10h4 M3 14h4 M17 10h4 M17 14h4',
  mobile: 'M7 3h10v18H7z M11 18h2',
};
const kSvg = 'http://www.w3.org/2000/svg';

export function icon(name) {
  const svg = document.createElementNS(kSvg, 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('class', 'icon');
  svg.setAttribute('aria-hidden', 'true');
  const path = document.createElementNS(kSvg, 'path');
  path.setAttribute('d', kIcons[name]);
  svg.append(path);
  return svg;
}
