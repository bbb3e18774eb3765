// A card without a form, and a list of facts.
import type {ComponentChildren} from 'preact';
import {t, type WordKey} from '../../words';
import {Icon, type IconName} from './Icon';

interface CardProps { id: string; title: WordKey; icon: IconName; wide?: boolean;
  children: ComponentChildren }

export const Card = ({id, title, icon, wide, children}: CardProps) =>
  <section class={`card${wide ? ' wide' : ''}`} data-section={id} aria-labelledby={`${id}-title`}>
    <h2 id={`${id}-title`}><Icon name={icon} />{t(title)}</h2>
    {children}
  </section>;

export const Fact = ({name, tone, id, children}:
    {name: string; tone?: string; id?: string; children: ComponentChildren}) =>
  <div data-fact={id}><dt>{name}</dt><dd class={tone}>{children}</dd></div>;
