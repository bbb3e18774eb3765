// Date and time as the recorder writes them.
const two = (number: number) => `${number < 10 ? '0' : ''}${number}`;

export const timeOfDay = (date: Date) =>
  [date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join(':');

export const clockText = (date: Date) =>
  `${[date.getFullYear(), two(date.getMonth() + 1), two(date.getDate())].join('-')} ${timeOfDay(date)}`;
