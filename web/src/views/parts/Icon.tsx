// Drawn on a grid of 24, in the text's colour.
const kIcons = {
  recorder: 'M3 7h13v10H3z M16 10.5l5-3v9l-5-3',
  status: 'M3 12h4l3-7 4 14 3-7h4',
  device: 'M4 5h16v11H4z M8 20h8 M12 16v4',
  video: 'M3 6h18v12H3z M10 9.5v5l4.5-2.5z',
  network: 'M2.5 9a14 14 0 0 1 19 0 M6 12.8a9 9 0 0 1 12 0 M9.3 16.4a4 4 0 0 1 5.4 0 M12 20h.01',
  platforms: 'M4 4h16v6H4z M4 14h16v6H4z M8 7h.01 M8 17h.01',
  security: 'M6 11h12v9H6z M8.5 11V8a3.5 3.5 0 0 1 7 0v3',
  maintenance: 'M5 4v16 M12 4v16 M19 4v16 M3 9h4 M10 15h4 M17 8h4',
  settings: 'M4 6h10 M18 6h2 M16 4v4 M4 12h2 M10 12h10 M8 10v4 M4 18h8 M16 18h4 M14 16v4',
  fleet: 'M3 6h11v9H3z M14 9h4l3 3v3h-7 M7 15a2 2 0 1 0 .01 0 M17 15a2 2 0 1 0 .01 0',
  done: 'M4 12.5l5 5L20 6.5',
  alert: 'M12 4l9 16H3z M12 10v4.5 M12 17.2h.01',
  info: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18 M12 11v5 M12 8h.01',
  out: 'M10 4H5v16h5 M10 12h11 M17 8l4 4-4 4',
  pin: 'M12 21c-4.5-5-7-8.4-7-11.2a7 7 0 0 1 14 0c0 2.8-2.5 6.2-7 11.2z M12 7.5v5 M9.5 10h5',
  disk: 'M3 14l3-9h12l3 9v5H3z M3 14h18 M17 16.7h.01',
  plug: 'M9 3v5 M15 3v5 M6 8h12v3a6 6 0 0 1-12 0z M12 17v4',
  chip: 'M7 7h10v10H7z M10 3v4 M14 3v4 M10 17v4 M14 17v4 M3 10h4 M3 14h4 M17 10h4 M17 14h4',
  mobile: 'M7 3h10v18H7z M11 18h2',
  auto: 'M12 4a8 8 0 1 0 0 16z M12 4a8 8 0 0 1 0 16',
  light: 'M12 8a4 4 0 1 0 0 8 4 4 0 0 0 0-8 M12 2v3 M12 19v3 M2 12h3 M19 12h3 M5 5l2 2 M17 17l2 2 M5 19l2-2 M17 7l2-2',
  dark: 'M20 14.5A8.5 8.5 0 0 1 9.5 4 8.5 8.5 0 1 0 20 14.5z',
};

export type IconName = keyof typeof kIcons;

export const Icon = ({name}: {name: IconName}) =>
  <svg viewBox="0 0 24 24" class="icon" aria-hidden="true"><path d={kIcons[name]} /></svg>;
