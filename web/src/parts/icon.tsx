const paths = {
  menu: 'M4 7h16M4 12h16M4 17h16',
  search: 'M10.5 17a6.5 6.5 0 1 0 0-13 6.5 6.5 0 0 0 0 13ZM15.5 15.5 20 20',
  close: 'M6 6l12 12M18 6 6 18',
  chevron: 'm7 10 5 5 5-5',
  activity: 'M4 12h4l2.5-7 4 14 2.5-7h3',
  auto: 'M4 5h16v11H4zM9 20h6M12 16v4',
  light: 'M12 8a4 4 0 1 0 0 8 4 4 0 0 0 0-8ZM12 2.5v2M12 19.5v2M2.5 12h2M19.5 12h2M5.3 5.3l1.4 1.4M17.3 17.3l1.4 1.4M5.3 18.7l1.4-1.4M17.3 6.7l1.4-1.4',
  dark: 'M20 14.2A8.2 8.2 0 0 1 9.8 4a8.2 8.2 0 1 0 10.2 10.2Z',
  leave: 'M14 4h4.5A1.5 1.5 0 0 1 20 5.5v13a1.5 1.5 0 0 1-1.5 1.5H14M4 12h10M10.5 8l4 4-4 4',
  info: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18ZM12 11v5M12 7.8v.4',
  question: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18ZM9.6 9.4A2.5 2.5 0 0 1 12 7.6c1.5 0 2.6 1 2.6 2.3 0 1.8-2.5 2-2.5 3.7M12 16.2v.3',
  warning: 'M12 4 2.8 19.5h18.4zM12 10v4.5M12 17v.2',
  critical: 'M8.3 3h7.4L21 8.3v7.4L15.7 21H8.3L3 15.7V8.3zM12 7.5v5.5M12 16.2v.3',
  check: 'm5 12.5 4.5 4.5L19 7.5',
  upload: 'M12 15V4M7.5 8.5 12 4l4.5 4.5M4 15v5h16v-5',
  download: 'M12 4v11M7.5 10.5 12 15l4.5-4.5M4 15v5h16v-5',
  copy: 'M9 9h11v11H9zM15 9V4H4v11h5',
  expand: 'M4 9V4h5M20 15v5h-5M4 4l6 6M20 20l-6-6',
  page: 'M6 3h8l4 4v14H6zM14 3v4h4',
  control: 'M4 8h9M17 8h3M15 6v4M4 16h3M11 16h9M9 14v4',
  entry: 'M4 6h16M4 12h10M4 18h13',
  command: 'm5 8 4 4-4 4M12 17h7',
  offline: 'M3 3l18 18M8.5 15.5a5 5 0 0 1 7 0M5.5 12.2a9.5 9.5 0 0 1 4-2.3M14 9.8a9.5 9.5 0 0 1 4.5 2.4M12 19v.2M2.6 9a14 14 0 0 1 4-2.6M10.5 5.6A14 14 0 0 1 21.4 9',
} as const

export type IconName = keyof typeof paths

export function Icon({ name }: { name: IconName }) {
  return (
    <svg class="icon" viewBox="0 0 24 24" aria-hidden="true" focusable="false">
      <path d={paths[name]} />
    </svg>
  )
}

export function Logo() {
  return (
    <svg class="logo" viewBox="0 0 32 32" aria-hidden="true" focusable="false">
      <path class="logo-shield" d="M16 1.5 28 6v9.5c0 7-4.9 12.6-12 15-7.1-2.4-12-8-12-15V6z" />
      <path class="logo-mark" d="M10 20.5v-9l6 6 6-6v9" />
    </svg>
  )
}

export function Spinner() {
  return <span class="spinner" aria-hidden="true" />
}
